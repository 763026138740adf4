# Shows the wireless tables of an agent as a person reads them: one block a table, a line for each column (and second index), and
# the interfaces side by side.
# Usage: awk -f show.awk COLUMNS INTERFACES VALUES
#   COLUMNS     what columns.awk prints
#   INTERFACES  index and name of an interface a line
#   VALUES      what snmpwalk -m '' -Onx prints for the columns

function hex(digits,    i, value) {
    for (i = 1; i <= length(digits); i++) value = value * 16 + index("0123456789abcdef", substr(digits, i, 1)) - 1
    return value
}
function octets(text,    count, octet, i, shown) {
    count = split(tolower(text), octet, " ")
    for (i = 1; i <= count; i++) {
        if (hex(octet[i]) < 32 || hex(octet[i]) > 126) return "0x" joined(octet, count, "")
        shown = shown sprintf("%c", hex(octet[i]))
    }
    return "\"" shown "\""
}
function joined(part, count, between,    i, text) {
    for (i = 1; i <= count; i++) text = text (i > 1 ? between : "") part[i]
    return text
}
function address(text,    part) { return joined(part, split(tolower(text), part, " "), ":") }
function named(number, names,    count, pair, i) {
    count = split(names, pair, "[ =]")
    for (i = 2; i <= count; i += 2)
        if (pair[i] == number) return pair[i - 1] "(" number ")"
    return number
}
# The value in net-snmp's words, as its column's syntax makes it readable.
function shown(text, syntax) {
    if (text == "\"\"") return text
    sub(/^[-A-Za-z0-9]+: /, "", text)
    sub(/ +$/, "", text)
    if (syntax == "MacAddress") return address(text)
    if (syntax == "OCTET" || syntax == "DisplayString") return octets(text)
    return syntax ~ /=/ ? named(text, syntax) : text
}
function widest(text) {
    if (length(text) > width) width = length(text)
    return text
}
# Takes the value of one instance: places it in its line (column and second index) and beside its interface.
function place(oid, value,    c, suffix, interface, line) {
    for (c = 1; c <= columns; c++)
        if (index(oid, prefix[c]) == 1) break
    if (c > columns) return
    suffix = substr(oid, length(prefix[c]) + 1)
    interface = suffix
    sub(/[.].*/, "", interface)
    line = name[c] substr(suffix, length(interface) + 1)
    if (!((c, line) in known)) {
        known[c, line]
        lines[c] = lines[c] "\t" line
    }
    if (!(interface in seen)) {
        seen[interface]
        interfaces[++interface_count] = interface
    }
    cell[line, interface] = widest(shown(value, syntax[c]))
}
function take() { if (oid != "" && value !~ /^No /) place(oid, value) }
function heading(interface) { return (interface in named_interface ? named_interface[interface] : "none") " (" interface ")" }
function print_line(indent, label, interface_text, unit,    i, text) {
    for (i = 1; i <= interface_count; i++) text = text sprintf("  %-" width "s", interface_text[i])
    text = sprintf("%-42s%s  %s", indent label, text, unit)
    sub(/ +$/, "", text)
    print text
}
function print_column(c,    count, line, i, k, texts) {
    count = split(substr(lines[c], 2), line, "\t")
    for (k = 1; k <= count; k++) {
        for (i = 1; i <= interface_count; i++) texts[i] = cell[line[k], interfaces[i]]
        print_line("  ", line[k], texts, unit[c])
    }
}
function print_table(first, last,    c, i, texts, missing) {
    for (i = 1; i <= interface_count; i++) texts[i] = heading(interfaces[i])
    print ""
    print_line("", table[first], texts, "")
    for (c = first; c <= last; c++) {
        if (lines[c] != "") print_column(c)
        else missing = missing " " name[c]
    }
    if (missing != "") print "  (no value:" missing ")"
}
BEGIN { FS = "\t" }
FILENAME == ARGV[1] {
    columns++
    table[columns] = $1
    name[columns] = $2
    prefix[columns] = "." $3 "."
    syntax[columns] = $4
    unit[columns] = $5
    next
}
FILENAME == ARGV[2] {
    named_interface[$1] = $2
    next
}
# A value may go on over several lines.
/^[.]/ {
    take()
    split($0, part, " = ")
    oid = part[1]
    value = part[2]
    next
}
{ value = value " " $0 }
END {
    take()
    for (i = 1; i <= interface_count; i++) widest(heading(interfaces[i]))
    for (first = 1; first <= columns; first = last + 1) {
        answered = lines[first]
        for (last = first; table[last + 1] == table[first]; last++) answered = answered lines[last + 1]
        if (answered != "") print_table(first, last)
        else silent = silent "\n  " table[first]
    }
    if (silent != "") print "\nTables without values (no rows, no rights, or no answer):" silent
}
