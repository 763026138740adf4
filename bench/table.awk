# The results of bench/run ("MEASURE@INTERFACES<TAB>VALUE") as the table of bench/rows.tsv, with what is above its limit on
# standard error and status 1. With complete=1 a measure that has a limit must be among the results.
# usage: awk -v complete=0|1 -f bench/table.awk bench/rows.tsv RESULTS
BEGIN {
    FS = "\t"
    print "| measure | interfaces | ours | yardstick | ratio | limit |"
    print "|---|---|---|---|---|---|"
}
/^#/ { next }
NR == FNR { row[++rows] = $0; next }
{ value[$1] = $2 }
END {
    for (i = 1; i <= rows; ++i) {
        split(row[i], field, "\t")
        sizes = split(field[6], limit, " ")
        for (j = 1; j <= sizes; ++j) {
            split(limit[j], part, ":")
            compare(part[1], part[2])
        }
    }
    exit bad
}
function compare(size, most,  ours, beside, ratio) {
    ours = field[3] "@" size
    beside = field[4] "@" size
    if (!(ours in value) || (field[4] != "-" && !(beside in value))) {
        if (complete && most != "-") fail(field[1] ", " size " interfaces: not measured")
        return
    }
    ratio = field[4] == "-" ? value[ours] : value[ours] / value[beside]
    printf "| %s: %s | %d | %s | %s | %s | %s |\n", field[1], field[2], size, short(value[ours]), \
        field[4] == "-" ? "" : field[5] " " short(value[beside]), field[4] == "-" ? "" : sprintf("%.2f", ratio), \
        most == "-" ? "" : most
    if (most != "-" && ratio > most)
        fail(field[1] ", " size " interfaces: " field[2] " " short(value[ours]) ", " sprintf("%.2f", ratio) " of " \
            field[5] ", at most " most)
}
function short(number) {
    if (number >= 1e6) return sprintf("%.1f M", number / 1e6)
    if (number >= 1e4) return sprintf("%.1f k", number / 1e3)
    return sprintf("%.10g", number >= 100 ? int(number + 0.5) : number)
}
function fail(line) { print "bench/run: " line >"/dev/stderr"; bad = 1 }
