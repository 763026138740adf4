# Lists the columns of a MIB module, one a line, fields separated by tabs: table, column, OID, syntax (for an enumeration its
# names, as in "up=1 down=2"), unit. Usage: awk -f columns.awk MIB-FILE
function oid(name) { return name in root ? root[name] : oid(parent[name]) "." number[name] }
function names(list) {
    gsub(/.*[{] *| *[}].*/, "", list)
    gsub(/[(]/, "=", list)
    gsub(/[),]/, "", list)
    return list
}
BEGIN { OFS = "\t"; enumeration["TruthValue"] = "true=1 false=2" }
$2 == "OBJECT-TYPE" { object = $1 }
$1 == "SYNTAX" {
    syntax[object] = $2
    if (/[{]/) enumeration[object] = names($0)
}
$1 == "UNITS" {
    split($0, part, "\"")
    unit[object] = part[2]
}
$1 == "MAX-ACCESS" { access[object] = $2 }
/::= [{] iso / {
    place = $0
    gsub(/.*[{] iso | [}].*|[-a-z]+[(]|[)]/, "", place)
    gsub(/ /, ".", place)
    root[$1] = "1." place
}
$2 == "OBJECT" && $3 == "IDENTIFIER" && NF == 8 { parent[$1] = $6; number[$1] = $7 }
$1 == "::=" && NF == 5 && object != "" {
    parent[object] = $3
    number[object] = $4
    if (access[object] != "not-accessible") column[++count] = object
    object = ""
}
END {
    for (i = 1; i <= count; i++) {
        name = column[i]
        kind = name in enumeration ? enumeration[name] : syntax[name] in enumeration ? enumeration[syntax[name]] : syntax[name]
        print parent[parent[name]], name, oid(name), kind, unit[name]
    }
}
