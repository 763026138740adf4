# hostapd is killed and started again: rows go and come, at new indexes where interfaces are new
must 'a collector and an agent' serve
rows_follow_hostapd KILL
