# Who asks often sees old values; with dot11MaxAge it sees none older than that
must 'a collector' serve
stop_agent
dot11_max_age='' must 'an agent without dot11MaxAge' start_agent
expect 'dot11RTSThreshold' 2000 "$(operation 2 wlan0)"
iw phy phy0 set rts 600
expect_soon 'RTS threshold in the store' 600 stored radio wlan0 rts-threshold
for _ in 1 2 3 4 5 6; do
    expect 'dot11RTSThreshold, asked every 5 seconds' 2000 "$(operation 2 wlan0)"
    sleep 5
done
operation 2 wlan0 >/dev/null
sleep 17
expect 'dot11RTSThreshold after 17 seconds of silence' 600 "$(operation 2 wlan0)"
stop_agent
dot11_max_age='dot11MaxAge 5' must 'an agent with dot11MaxAge' start_agent
expect 'dot11RTSThreshold' 600 "$(operation 2 wlan0)"
iw phy phy0 set rts 2000
expect_soon 'dot11RTSThreshold, asked all the time' 2000 operation 2 wlan0
stop_agent
start_agent
