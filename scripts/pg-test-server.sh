#!/usr/bin/env bash
# Starts or stops a throwaway PostgreSQL server for the tests: initdb and pg_ctl from
# Debian's postgresql package, in a temporary folder, on a Unix socket only, with no
# network. "start FILE" writes the server's connection URI to FILE, or nothing and a
# notice when the package is not installed; "stop FILE" stops it and removes its folder.
set -euo pipefail

action=${1:?start or stop}
uri_file=${2:?the file for the connection URI}
bin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1 || true)

as_server_user() {
    # The server refuses to run as root; the package's own user runs it then.
    if [ "$(id -u)" -eq 0 ]; then
        runuser -u postgres -- "$@"
    else
        "$@"
    fi
}

case "$action" in
start)
    rm -f "$uri_file"
    if [ -z "$bin" ] || [ ! -x "$bin/initdb" ]; then
        echo "PostgreSQL is not installed (no initdb under /usr/lib/postgresql): the store tests on a server are skipped"
        exit 0
    fi
    dir=$(mktemp -d /tmp/plcdb-pg.XXXXXX)
    chmod 755 "$dir"
    [ "$(id -u)" -eq 0 ] && chown postgres "$dir"
    as_server_user "$bin/initdb" -D "$dir/data" -U plcdb --auth=trust -E UTF8 --no-locale >"$dir/initdb.log"
    as_server_user "$bin/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w -s \
        -o "-k $dir -c listen_addresses='' -c fsync=off -c synchronous_commit=off -c full_page_writes=off -c max_connections=200" start
    echo "$dir" >"$uri_file.dir"
    echo "postgresql:///postgres?host=$dir&user=plcdb" >"$uri_file"
    echo "PostgreSQL test server on $dir"
    ;;
stop)
    if [ -f "$uri_file.dir" ]; then
        dir=$(cat "$uri_file.dir")
        as_server_user "$bin/pg_ctl" -D "$dir/data" -m immediate -w -s stop || true
        rm -rf "$dir" "$uri_file.dir"
    fi
    rm -f "$uri_file"
    ;;
*)
    echo "usage: $0 start|stop FILE" >&2
    exit 2
    ;;
esac
