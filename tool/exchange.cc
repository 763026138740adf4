// The commands import and export.
#include <map>
#include <set>

#include "commands.h"
#include "facts.h"
#include "input.h"
#include "output.h"
#include "private_file.h"
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
        const std::vector<ObjectRef> there = refs(reading.contents);
        for (size_t i = 0; i < there.size(); ++i)
            ids_.emplace(there[i], reading.ids[i]);
    }

    void put(const ObjectRef& ref, const Attributes& attributes) {
        const auto [entry, is_new] = ids_.try_emplace(ref, 0);
        int64_t& id = entry->second;
        if (is_new) store_.require(store_.database().insert_object(ref.table, ref.name, id));
        for (const auto& [key, value] : attributes) {
            store_.require(store_.database().set_attribute(id, ref.table, ref.name, key, value));
        }
    }

    void commit() { store_.require(store_.database().commit()); }

  private:
    Store& store_;
    std::map<ObjectRef, int64_t> ids_;
};

std::string source_of(const std::string& file) {
    return file == "-" ? "standard input" : file;
}

Contents contents_of(const std::string& file) {
    const std::string text = text_of(file);
    try {
        return from_toml(text, source_of(file));
    } catch (const Failure& failure) {
        throw Failure(failure.exit(), std::string(failure.what()) + "; nothing has been imported");
    }
}

// Keys are free, but what the agent does not read may be a typing error. Prints a few notes at most.
void note_typing_errors(const Contents& contents) {
    constexpr size_t most = 10;
    std::set<std::string> errors;
    for (const Object& object : contents) {
        for (const auto& [key, value] : object.attributes)
            errors.insert(typing_error(object.table, key));
    }
    errors.erase("");
    size_t told = 0;
    for (const std::string& error : errors) {
        if (told++ < most) complain("note: " + error);
    }
    if (told > most) complain("note: and " + counted(told - most, "more such key") + "; see \"cfql lint\"");
}

}  // namespace

Exit import_contents(const Request& request) {
    const Contents contents = contents_of(request.file);
    if (contents.empty() && request.replace && !request.allow_empty) {
        throw Failure(Exit::input, source_of(request.file) +
                                       ": there is no object in it; nothing has changed. To empty the store, add "
                                       "--allow-empty");
    }
    const std::vector<ObjectRef> targets = refs(contents);
    Store store(request.store, Access::write);
    Import import(store, request.replace);
    size_t values = 0;
    for (size_t i = 0; i < contents.size(); ++i) {
        import.put(targets[i], contents[i].attributes);
        values += contents[i].attributes.size();
    }
    import.commit();
    note_typing_errors(contents);
    print_line("imported " + counted(contents.size(), "object") + " with " + counted(values, "value"));
    return Exit::done;
}

Exit export_contents(const Request& request) {
    Store store(request.store, request.salvage ? Access::salvage : Access::recover);
    Reading reading = request.salvage ? store.salvage() : store.read();
    const bool hide = request.file.empty() && on_terminal() && !request.reveal;
    size_t hidden = 0;
    for (Object& object : reading.contents) {
        for (auto& [key, value] : object.attributes) {
            if (!hide || !is_secret(key)) continue;
            value = mask;
            ++hidden;
        }
    }
    const std::string text = to_toml(reading.contents);
    if (request.file.empty()) {
        print(text);
    } else {
        write_private_file(request.file, text);
        report("exported " + counted(reading.contents.size(), "object") + " to " + request.file);
    }
    if (hidden > 0) complain(counted(hidden, "secret") + " masked on the terminal; add --output FILE, or --reveal");
    complain_of_damage(store, reading);
    return reading.damage.empty() ? Exit::done : Exit::store;
}

}  // namespace cfql::tool
