// The commands import and export.
#include <map>

#include "commands.h"
#include "input.h"
#include "output.h"
#include "store.h"
#include "text.h"
#include "toml_text.h"

namespace cfql::tool {

namespace {

// One write transaction; without commit() it ends without effect.
class Import {
  public:
    Import(Store& store, bool replace) : store_(store) {
        store_.require(store_.database().begin_write());
        if (replace) {
            store_.require(store_.database().delete_all());
            return;
        }
        const Reading reading = store_.read();
        const std::vector<Place> there = places(reading.contents);
        for (std::size_t i = 0; i < there.size(); ++i)
            ids_.emplace(there[i], reading.ids[i]);
    }

    void put(const Place& place, const Attributes& attributes) {
        const auto [entry, is_new] = ids_.try_emplace(place, 0);
        std::int64_t& id = entry->second;
        if (is_new) store_.require(store_.database().insert_object(place.table, place.name, id));
        for (const auto& [key, value] : attributes) {
            store_.require(store_.database().set_attribute(id, place.table, place.name, key, value));
        }
    }

    void commit() { store_.require(store_.database().commit()); }

  private:
    Store& store_;
    std::map<Place, std::int64_t> ids_;
};

Contents contents_of(const std::string& file) {
    const std::string text = text_of(file);
    try {
        return from_toml(text, file == "-" ? "standard input" : file);
    } catch (const Failure& failure) {
        throw Failure(failure.exit(), std::string(failure.what()) + "; nothing has been imported");
    }
}

}  // namespace

Exit import_contents(const Request& request) {
    const Contents contents = contents_of(request.file);
    const std::vector<Place> targets = places(contents);
    Store store(request.store, Access::write);
    Import import(store, request.replace);
    std::size_t values = 0;
    for (std::size_t i = 0; i < contents.size(); ++i) {
        import.put(targets[i], contents[i].attributes);
        values += contents[i].attributes.size();
    }
    import.commit();
    print_line("imported " + counted(contents.size(), "object") + " with " + counted(values, "value"));
    return Exit::done;
}

Exit export_contents(const Request& request) {
    Store store(request.store, Access::read);
    Reading reading = store.read();
    const bool hide = on_terminal() && !request.reveal;
    std::size_t hidden = 0;
    for (Object& object : reading.contents) {
        for (auto& [key, value] : object.attributes) {
            if (!hide || !is_secret(key)) continue;
            value = mask;
            ++hidden;
        }
    }
    print(to_toml(reading.contents));
    if (hidden > 0) complain(counted(hidden, "secret") + " masked on the terminal; write to a file, or add --reveal");
    complain_of_damage(store, reading);
    return reading.damage.empty() ? Exit::done : Exit::store;
}

}  // namespace cfql::tool
