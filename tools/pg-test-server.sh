#!/usr/bin/env bash
# A throwaway PostgreSQL server for the tests, on a Unix socket in a private folder.
#   tools/pg-test-server.sh start DIR    initdb and start (as postgres when run as root)
#   tools/pg-test-server.sh stop DIR     stop it and remove DIR
set -euo pipefail
action=$1
dir=$2
bin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1)
if [ -z "$bin" ]; then
    echo "no PostgreSQL server programs under /usr/lib/postgresql" >&2
    exit 1
fi
# The server refuses to run as root. runuser lives in sbin, which a plain PATH may lack.
runuser=$(PATH="$PATH:/usr/sbin:/sbin" command -v runuser || true)
as_owner() {
    if [ "$(id -u)" != 0 ]; then
        "$@"
    elif [ -n "$runuser" ]; then
        "$runuser" -u postgres -- "$@"
    else
        su postgres -s /bin/sh -c "$(printf '%q ' "$@")"
    fi
}
case "$action" in
    start)
        if [ -f "$dir/data/postmaster.pid" ]; then
            as_owner "$bin/pg_ctl" -D "$dir/data" -m immediate stop >/dev/null 2>&1 || true
        fi
        rm -rf "$dir"
        mkdir -p "$dir"
        chmod 700 "$dir"
        if [ "$(id -u)" = 0 ]; then chown postgres: "$dir"; fi
        as_owner "$bin/initdb" -D "$dir/data" -U postgres --auth=trust -E UTF8 --locale=C.UTF-8 \
            >"$dir/initdb.log" 2>&1 || { cat "$dir/initdb.log" >&2; exit 1; }
        # Durability is not what the tests are about; speed is.
        as_owner "$bin/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w -t 60 \
            -o "-k $dir -c listen_addresses='' -c fsync=off -c synchronous_commit=off \
                -c full_page_writes=off -c max_connections=200" start >/dev/null ||
            { cat "$dir/server.log" >&2; exit 1; }
        echo "PostgreSQL test server on $dir"
        ;;
    stop)
        if [ -d "$dir/data" ]; then
            as_owner "$bin/pg_ctl" -D "$dir/data" -m immediate stop >/dev/null 2>&1 || true
        fi
        rm -rf "$dir"
        ;;
    *)
        echo "usage: tools/pg-test-server.sh start|stop DIR" >&2
        exit 2
        ;;
esac
