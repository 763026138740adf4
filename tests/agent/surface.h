// The surface file, surface.tsv: every column that the agent serves, as written down by hand.
#pragma once

#include <string>
#include <vector>

struct SurfaceColumn {
    std::string oid;     // dotted and whole, of the column
    std::string name;    // of the MIB
    std::string type;    // "INTEGER", "OCTET STRING", "Counter32", "Gauge32"
    std::string access;  // "read-only", "read-write"
    std::string check;   // of a SET; "-" for a column that is read-only
    std::string marks;   // "-", "always-set", "not-answered", "not-answered,never-written"

    bool is_answered() const { return marks.find("not-answered") == std::string::npos; }
    bool is_writable() const { return access == "read-write"; }
};

// All columns, in the order of the file.
std::vector<SurfaceColumn> read_surface();
