#include "manufacturer.h"

#include <fstream>

#include "contents.h"

namespace collector {

namespace {

// The first 255 octets.
std::string content(const std::string& path) {
    std::string text(255, '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<size_t>(file.gcount()));
    return plain(text.substr(0, text.find('\0')));
}

}  // namespace

Manufacturer read_manufacturer(const std::string& root) {
    const std::string dmi = root + "/class/dmi/id/";
    Manufacturer maker = {content(dmi + "sys_vendor"), content(dmi + "product_name"), content(dmi + "product_version")};
    if (maker.product.empty()) maker.product = content(root + "/firmware/devicetree/base/model");
    return maker;
}

}  // namespace collector
