#!/usr/bin/env bash
# Starts a throwaway PostgreSQL cluster on a Unix socket under /tmp and prints its URL.
#   scripts/pg-cluster.sh start   -> prints postgresql:///postgres?host=DIR&port=PORT&user=postgres
#   scripts/pg-cluster.sh stop DIR
# The cluster runs as the "postgres" system user (initdb refuses root), with trust
# authentication on the socket only, C collation (byte order) and UTF-8.
set -euo pipefail

pg_bin() {
  local v
  v=$(ls /usr/lib/postgresql 2>/dev/null | sort -n | tail -1)
  [ -n "$v" ] || { echo "PostgreSQL server binaries not found (apt-get install postgresql)" >&2; exit 1; }
  echo "/usr/lib/postgresql/$v/bin"
}

as_pg() {
  if [ "$(id -u)" = 0 ]; then runuser -u postgres -- "$@"; else "$@"; fi
}

case "${1:-}" in
  start)
    bin=$(pg_bin)
    dir=$(mktemp -d /tmp/mrvk-pg-XXXXXX)
    chmod 755 "$dir"
    if [ "$(id -u)" = 0 ]; then chown postgres:postgres "$dir"; fi
    port=$(( 20000 + RANDOM % 20000 ))
    as_pg "$bin/initdb" -D "$dir/data" -U postgres --auth=trust --encoding=UTF8 --locale=C >"$dir/initdb.log" 2>&1 \
      || { cat "$dir/initdb.log" >&2; exit 1; }
    # Test clusters skip fsync; MRVK_PG_DURABLE=1 (benchmarks) keeps the server's defaults.
    opts="-k $dir -p $port -c listen_addresses='' -c max_connections=200"
    [ -n "${MRVK_PG_DURABLE:-}" ] || opts="$opts -c fsync=off -c full_page_writes=off"
    as_pg "$bin/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w -o "$opts" \
      start >/dev/null || { cat "$dir/server.log" >&2; exit 1; }
    echo "postgresql:///postgres?host=$dir&port=$port&user=postgres"
    ;;
  stop)
    dir=${2:?usage: pg-cluster.sh stop DIR}
    bin=$(pg_bin)
    as_pg "$bin/pg_ctl" -D "$dir/data" -m immediate stop >/dev/null 2>&1 || true
    rm -rf "$dir"
    ;;
  *)
    echo "usage: $0 start | stop DIR" >&2
    exit 2
    ;;
esac
