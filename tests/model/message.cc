#include "message.h"

#include <cstdio>

namespace {

constexpr uint8_t sequence = 0x30;

std::string block(uint8_t type, const std::string& content) {
    std::string out(1, static_cast<char>(type));
    const size_t length = content.size();
    if (length >= 0x80) out += '\x82', out += static_cast<char>(length >> 8);
    return out + static_cast<char>(length) + content;
}

void append_subid(std::string& out, uint32_t subid) {
    for (int shift = 28; shift > 0; shift -= 7)
        if (subid >> shift) out += static_cast<char>(0x80 | (subid >> shift & 0x7f));
    out += static_cast<char>(subid & 0x7f);
}

std::string oid_octets(const Oid& name) {
    std::string out;
    append_subid(out, name[0] * 40 + (name.size() > 1 ? name[1] : 0));
    for (size_t i = 2; i < name.size(); ++i)
        append_subid(out, name[i]);
    return out;
}

// Reads blocks one after the other; `ok` is false from the first that does not fit on.
struct Reader {
    std::span<const uint8_t> rest;
    bool ok = true;

    std::span<const uint8_t> take(size_t count) {
        if (count > rest.size()) ok = false;
        if (!ok) return {};
        const auto taken = rest.first(count);
        rest = rest.subspan(count);
        return taken;
    }
    size_t length() {
        const auto first = take(1);
        if (!ok || first[0] < 0x80) return ok ? first[0] : 0;
        size_t value = 0;
        for (const uint8_t octet : take(first[0] & 0x7fU))
            value = value << 8 | octet;
        return value;
    }
    Value block() {
        const auto type = take(1);
        const auto content = take(length());
        return ok ? Value{type[0], {content.begin(), content.end()}} : Value{};
    }
    // The content of a block of that type.
    std::string content(uint8_t type) {
        Value read = block();
        if (read.type != type) ok = false;
        return read.octets;
    }
    int32_t number() { return static_cast<int32_t>(number_of(content(integer))); }
};

Oid oid_of(const std::string& octets) {
    Oid name;
    uint32_t subid = 0;
    for (const uint8_t octet : octets_of(octets)) {
        subid = subid << 7 | (octet & 0x7fU);
        if (octet & 0x80) continue;
        if (name.empty()) {
            name.push_back(subid < 80 ? subid / 40 : 2);
            subid -= name[0] * 40;
        }
        name.push_back(subid);
        subid = 0;
    }
    return name;
}

}  // namespace

std::span<const uint8_t> octets_of(const std::string& text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

std::string integer_octets(int64_t number) {
    std::string out;
    for (int shift = 56; shift >= 0; shift -= 8) {
        const bool needed = number >> shift != number >> 63 || (shift && (number >> (shift - 1) & 1) != (number < 0));
        if (!out.empty() || needed || !shift) out += static_cast<char>(number >> shift);
    }
    return out;
}

int64_t number_of(const std::string& octets) {
    int64_t number = !octets.empty() && octets[0] & 0x80 ? -1 : 0;
    for (const uint8_t octet : octets_of(octets))
        number = static_cast<int64_t>(static_cast<uint64_t>(number) << 8) | octet;
    return number;
}

std::string encoded(const Pdu& pdu) {
    std::string list;
    for (const Varbind& varbind : pdu.varbinds)
        list += block(sequence,
                      block(object_id, oid_octets(varbind.name)) + block(varbind.value.type, varbind.value.octets));
    const std::string body = block(integer, integer_octets(pdu.request_id)) +
                             block(integer, integer_octets(pdu.status)) + block(integer, integer_octets(pdu.index)) +
                             block(sequence, list);
    return block(sequence, block(integer, "\x01") + block(octet_string, "public") + block(pdu.command, body));
}

std::optional<Pdu> decoded(std::span<const uint8_t> message) {
    Reader outer{message};
    const std::string whole = outer.content(sequence);
    Reader parts{octets_of(whole)};
    parts.number();
    parts.content(octet_string);
    const Value body = parts.block();
    Reader fields{octets_of(body.octets)};
    Pdu pdu = {body.type, fields.number(), fields.number(), fields.number(), {}};
    const std::string list = fields.content(sequence);
    Reader varbinds{octets_of(list)};
    bool ok = outer.ok && parts.ok && fields.ok;
    while (ok && !varbinds.rest.empty()) {
        const std::string pair = varbinds.content(sequence);
        Reader varbind{octets_of(pair)};
        const Oid name = oid_of(varbind.content(object_id));
        pdu.varbinds.push_back({name, varbind.block()});
        ok = varbinds.ok && varbind.ok;
    }
    return ok ? std::optional(pdu) : std::nullopt;
}

std::string shown(const Oid& name) {
    std::string out;
    for (const uint32_t subid : name)
        out += '.' + std::to_string(subid);
    return out;
}

std::string shown(const Varbind& varbind) {
    char text[8];
    snprintf(text, sizeof text, " %02x:", static_cast<unsigned>(varbind.value.type));
    std::string out = shown(varbind.name) + text;
    for (const char octet : varbind.value.octets) {
        snprintf(text, sizeof text, " %02x", static_cast<unsigned>(static_cast<uint8_t>(octet)));
        out += text;
    }
    return out;
}
