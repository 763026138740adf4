# An hour and a half of made-up counters of four radios, in OpenMetrics' text format, for promtool to make a database of.
# Usage: awk -v now=SECONDS -v ssid=TEXT -f hour.awk    TEXT is the SSID of the radio that is idle
function radio(i) { return sprintf("{instance=\"%s\",ifIndex=\"%d\",ifName=\"%s\"", access_point[i], index_of[i], name[i]) }
function add(instance, ifindex, interface, network, at, sent, loss, noise) {
    count++
    access_point[count] = instance; index_of[count] = ifindex; name[count] = interface; ssid_of[count] = network
    channel[count] = at; load[count] = sent; lost[count] = loss; noisy[count] = noise
}
# Frames of the next 30 seconds: the load's own, with a wave and a little chance.
function frames(i, t) { return int(30 * load[i] * (1 + 0.4 * sin(t / 700 + 2 * i) + 0.3 * rand())) }
function labels(metric, i) { return metric ~ /SSID/ ? ",job=\"dot11-names\",dot11DesiredSSID=\"" ssid_of[i] "\"" : ",job=\"dot11\"" }
function family(metric,    i, t, value, total) {
    print "# TYPE " metric " unknown"
    for (i = 1; i <= count; i++) {
        srand(i)
        total = 0
        for (t = start; t <= now; t += 30) {
            sent = frames(i, t)
            if (metric ~ /Transmitted/) total += sent
            if (metric ~ /Received/) total += int(0.7 * sent)
            if (metric ~ /Failed/) total += int(lost[i] * sent * (1.2 + sin(t / 400 + i)) * 2 * rand())
            if (metric ~ /FCS/) total += int(noisy[i] * sent * (1 + rand()))
            value = metric ~ /Channel/ ? channel[i] : metric ~ /SSID/ ? 1 : total
            print metric radio(i) labels(metric, i) "} " value " " t
        }
    }
}
function ups(    job, t) {
    print "# TYPE up gauge"
    for (job = 1; job <= 2; job++)
        for (t = start; t <= now; t += 30) print "up{instance=\"ap" job ".example\",job=\"dot11\"} 1 " t
}
BEGIN {
    start = now - 5400
    add("ap1.example", 3, "wlan0", "Guests", 11, 60, 0.02, 0.11)
    add("ap1.example", 5, "wlan1", "Staff", 36, 180, 0.004, 0.02)
    add("ap2.example", 3, "wlan0", "Guests", 1, 110, 0.045, 0.2)
    add("ap2.example", 5, "wlan1", ssid, 44, 0, 0, 0)
    family("dot11CurrentChannel")
    family("dot11DesiredSSID")
    family("dot11TransmittedFrameCount")
    family("dot11ReceivedFragmentCount")
    family("dot11FailedCount")
    family("dot11FCSErrorCount")
    ups()
    print "# EOF"
}
