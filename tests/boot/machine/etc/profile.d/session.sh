# What a person's session does first: it asks whose session it is.
if [ "$(id -u)" -ne 0 ]; then
    tarnwick-parse-config --key Hostname > ~/answer.out 2> ~/answer.err
    echo $? > ~/answer.status
fi
