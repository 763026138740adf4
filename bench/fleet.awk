# The tables of docs/fleet.md, from what bench/fleet counted. `before` and `after`: milliseconds, packets, octets, samples, and
# ticks of the exporter, of Prometheus and of the agents.
function whole(number) { return sprintf("%.0f", number) }
function short(number) { return number < 10 ? sprintf("%.1f", number) : whole(number) }
function row(label, text) { print "| " label " | " text " |" }
# What `count` access points cost if everything is polled `interval` / 30 times as seldom as it was measured.
function computed(count, interval,    share, processors) {
    share = count * 30 / interval
    processors = share * exporter_seconds
    printf "| %d | %d s | %s | %s Mbit/s | %s | %s | %s | %d | %s GB |\n", count, interval, whole(share * packets / 2), short(share * octets * 8 / 1e6), \
        whole(share * samples), whole(count * series / agents), sprintf("%.2f", processors), processors < 0.5 ? 1 : int(processors / 0.5) + 1, \
        short(share * samples * 86400 * 15 * octets_per_sample / 1e9)
}
BEGIN {
    split(before, b, " ")
    split(after, a, " ")
    split(disk, d, " ")
    seconds = (a[1] - b[1]) / 1000
    packets = (a[2] - b[2]) / agents / seconds
    octets = (a[3] - b[3]) / agents / seconds
    samples = (a[4] - b[4]) / agents / seconds
    exporter_seconds = (a[5] - b[5]) / ticks_per_second / agents / seconds
    octets_per_sample = d[1] / d[2]
    print "Measured: " agents " agents with three radios each, " whole(seconds) " seconds, load " load ".\n"
    print "| | |"
    print "|---|---|"
    row("packets per agent and minute, both ways", short(60 * packets))
    row("octets per agent and minute, both ways, with Ethernet's headers", whole(60 * octets))
    row("samples per agent and minute, with those of the rules", whole(60 * samples))
    row("series per agent", whole(series / agents))
    row("average time of a poll", sprintf("%.1f ms", 1000 * scrape))
    row("time of the slowest poll", sprintf("%.1f ms", 1000 * slowest))
    row("processor time of the exporter per agent and minute", sprintf("%.1f ms", 60000 * exporter_seconds))
    row("processor time of Prometheus with its rules per agent and minute", sprintf("%.1f ms", 60000 * (a[6] - b[6]) / ticks_per_second / agents / seconds))
    row("processor time of an agent per minute", sprintf("%.1f ms", 60000 * (a[7] - b[7]) / ticks_per_second / agents / seconds))
    row("resident memory of an agent", sprintf("%.1f MB, of which %.1f MB are its own share", agent_rss / 1024, agent_pss / 1024 / agents))
    row("resident memory of the exporter", whole(exporter / 1024) " MB")
    row("resident memory of Prometheus", whole(prometheus / 1024) " MB")
    row("disk per sample", sprintf("%.1f octets", octets_per_sample))
    print "\nComputed from it:\n"
    print "| access points | interval | requests/s | traffic | samples/s | series | processors for exporting | exporters | disk, 15 days |"
    print "|---|---|---|---|---|---|---|---|---|"
    computed(100, 30)
    computed(1000, 30)
    computed(10000, 60)
}
