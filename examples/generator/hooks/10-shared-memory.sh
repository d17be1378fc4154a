#!/bin/sh
# Shared memory, and a file system that the container may not have: that line is refused.
echo "tmpfs /dev/shm tmpfs rw,nosuid,nodev 0 0"
echo "proc /proc proc defaults 0 0"
