#include "surface.h"

#include <fstream>
#include <sstream>

std::vector<SurfaceColumn> read_surface() {
    std::vector<SurfaceColumn> columns;
    std::ifstream file(SURFACE);
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('#')) continue;
        SurfaceColumn column;
        std::istringstream fields(line);
        for (std::string* field :
             {&column.oid, &column.name, &column.type, &column.access, &column.check, &column.marks})
            std::getline(fields, *field, '\t');
        columns.push_back(column);
    }
    return columns;
}
