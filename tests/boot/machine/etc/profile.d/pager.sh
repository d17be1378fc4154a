# On the serial console a pager would only wait for a key.
export SYSTEMD_PAGER=cat
