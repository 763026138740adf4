#include "toml_nesting.h"

#include <algorithm>

namespace cfql::tool {

namespace {

// Contents of a store need two names, as in `key.hex = "ff"`, and three brackets, as in `interface = [{ssid = {...}}]`.
constexpr size_t most_names = 8;
constexpr size_t most_brackets = 8;
constexpr const char* too_many_names = "more than 8 names joined by dots";
constexpr const char* too_many_brackets = "brackets are nested more than 8 deep";

// Of TOML it knows only where strings and comments end. That is enough up to the first error, where the parser stops.
class Scanner {
  public:
    explicit Scanner(std::string_view text) : text_(text) {}

    std::optional<Excess> run() {
        for (; at_ < text_.size(); ++at_) {
            if (const char* what = consume(text_[at_])) return excess(what);
        }
        return std::nullopt;
    }

  private:
    // Consumes `octet`, or the whole string or comment that begins with it. Returns what there is too much of, or null.
    const char* consume(char octet) {
        switch (octet) {
            case '"':
            case '\'':
                skip_quoted(octet);
                return nullptr;
            case '#':
                at_ = std::min(text_.find('\n', at_), text_.size());
                dots_ = 0;
                return nullptr;
            case '.':
                return ++dots_ < most_names ? nullptr : too_many_names;
            case '[':
            case '{':
                dots_ = 0;
                return ++brackets_ <= most_brackets ? nullptr : too_many_brackets;
            case ']':
            case '}':
                brackets_ -= brackets_ > 0 ? 1 : 0;
                [[fallthrough]];
            case '=':
            case ',':
            case '\n':
                dots_ = 0;
                return nullptr;
            default:
                return nullptr;
        }
    }

    bool is_at(size_t position, char octet, size_t count) const {
        return position < text_.size() &&
               text_.substr(position, count) == std::string_view{octet == '"' ? "\"\"\"" : "'''"}.substr(0, count);
    }

    // Leaves at_ on the last octet of the string.
    void skip_quoted(char quote) {
        const size_t width = is_at(at_, quote, 3) ? 3 : 1;
        for (at_ += width; at_ < text_.size() && !is_at(at_, quote, width); ++at_) {
            if (quote == '"' && text_[at_] == '\\') ++at_;
        }
        at_ += width - 1;
        // A string in triple quotes may itself end in one or two quotes.
        for (int more = 0; width == 3 && more < 2 && is_at(at_ + 1, quote, 1); ++more)
            ++at_;
    }

    Excess excess(const char* what) const {
        const std::string_view before = text_.substr(0, at_);
        const auto lines = static_cast<size_t>(std::ranges::count(before, '\n'));
        const std::string_view line = before.substr(before.rfind('\n') + 1);
        const auto characters = static_cast<size_t>(std::ranges::count_if(
            line, [](char octet) { return (static_cast<unsigned char>(octet) & 0xc0U) != 0x80; }));
        return {lines + 1, characters + 1, what};
    }

    std::string_view text_;
    size_t at_ = 0;
    size_t dots_ = 0;      // in the current name
    size_t brackets_ = 0;  // open ones
};

}  // namespace

std::optional<Excess> excess_of_nesting(std::string_view text) {
    return Scanner(text).run();
}

}  // namespace cfql::tool
