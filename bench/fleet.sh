#!/usr/bin/env bash
# The fleet benchmark on both engines: COUNT varied inventories (10 000 by default) loaded into a
# SQLite file and into a PostgreSQL server started here (initdb + pg_ctl in a temporary folder on
# 127.0.0.1; as root, run as "nobody"), then each question timed; the server is stopped at the end.
#   bash bench/fleet.sh [COUNT]        BUILD_DIR=build/linux by default
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR=${BUILD_DIR:-build/linux}
COUNT=${1:-10000}
PG_BIN=${PG_BIN:-/usr/lib/postgresql/15/bin}
PORT=${PORT:-55432}
cmake --build "$BUILD_DIR" -j2 --target vrxhost installedapps vrx_fleet_bench >/dev/null
bin=$BUILD_DIR/bin
work=$(mktemp -d /tmp/vrx_fleet_XXXXXX)
as_server() { if [ "$(id -u)" -eq 0 ]; then runuser -u nobody -- "$@"; else "$@"; fi; }
stop() {
  as_server "$PG_BIN/pg_ctl" -D "$work/pg" -m fast -w stop >/dev/null 2>&1 || true
  rm -rf "$work"
}
trap stop EXIT
[ "$(id -u)" -eq 0 ] && chown nobody "$work"

"$bin/vrxhost" --output "$work/template.json"
echo "== SQLite"
"$bin/vrx_fleet_bench" --target "$work/fleet.db" --template "$work/template.json" \
  --schema schema/qelto.mof --count "$COUNT"
echo "size	$(du -h "$work/fleet.db" | cut -f1)"

echo "== PostgreSQL"
as_server "$PG_BIN/initdb" -D "$work/pg" -A trust -U vrx >/dev/null
as_server "$PG_BIN/pg_ctl" -D "$work/pg" -l "$work/pg.log" -w \
  -o "-p $PORT -k $work -c listen_addresses=127.0.0.1" start >/dev/null
psql -q -h 127.0.0.1 -p "$PORT" -U vrx -d postgres -c "CREATE DATABASE fleet"
"$bin/vrx_fleet_bench" --target "postgresql://vrx@127.0.0.1:$PORT/fleet" \
  --template "$work/template.json" --schema schema/qelto.mof --count "$COUNT"
echo "size	$(psql -tA -h 127.0.0.1 -p "$PORT" -U vrx -d fleet \
  -c "SELECT pg_size_pretty(pg_database_size('fleet'))")"
