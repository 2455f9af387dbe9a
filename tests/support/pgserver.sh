#!/bin/sh
# The PostgreSQL server of the tests: a cluster of its own in a temporary folder, reached only
# on a Unix socket in that folder, run by a user that is not root (the server refuses root).
#   pgserver.sh start <state folder> <server bin folder> <psqlODBC driver>
#   pgserver.sh stop  <state folder>
#   pgserver.sh pause|resume <state folder>   stops the running server, or starts it again
# The state folder receives odbcinst.ini and odbc.ini, which describe the data source "Vorlane"
# on the server (point ODBCSYSINI and ODBCINI at them), and beside it the same database under
# an entry without a login, one with a wrong password and one of a server that is not there,
# and a database whose locale knows only ASCII letters (VorlaneLocaleC); the superuser's password file pgpass,
# and "cluster", the path of the temporary folder.
set -eu

state=$2
mkdir -p "$state"

stop() {
  [ -f "$state/cluster" ] || return 0
  dir=$(cat "$state/cluster")
  if [ -d "$dir/data" ]; then
    bin=$(cat "$dir/bin")
    as_owner "$dir" "$bin/pg_ctl" -D "$dir/data" -m immediate -w stop >/dev/null 2>&1 || true
  fi
  rm -rf "$dir"
  rm -f "$state/cluster"
}

# Runs a command as the owner of the cluster folder: the caller, or "nobody" under root.
as_owner() {
  folder=$1
  shift
  if [ "$(id -u)" -eq 0 ]; then
    (cd "$folder" && runuser -u nobody -- "$@")
  else
    (cd "$folder" && "$@")
  fi
}

# Starts the server of an existing cluster.
serve() {
  dir=$1
  bin=$(cat "$dir/bin")
  as_owner "$dir" "$bin/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w -t 60 \
    -o "-c listen_addresses='' -c unix_socket_directories='$dir' -p 5432 -c fsync=off" start >/dev/null ||
    { cat "$dir/server.log" >&2; exit 1; }
}

case "$1" in
  start)
    bin=$3
    driver=$4
    stop
    dir=$(mktemp -d /tmp/vorlane-pg.XXXXXX)
    echo "$dir" >"$state/cluster"
    echo "$bin" >"$dir/bin"
    superpw=$(od -An -N12 -tx1 /dev/urandom | tr -d ' \n')
    seatpw=$(od -An -N12 -tx1 /dev/urandom | tr -d ' \n')
    printf '%s\n' "$superpw" >"$dir/pw"
    [ "$(id -u)" -ne 0 ] || chown -R nobody "$dir"
    as_owner "$dir" "$bin/initdb" -D "$dir/data" -U postgres --pwfile="$dir/pw" --auth=scram-sha-256 \
      -E UTF8 --locale=C.UTF-8 >"$dir/initdb.log" 2>&1 || { cat "$dir/initdb.log" >&2; exit 1; }
    rm -f "$dir/pw"
    serve "$dir"

    # The superuser's password for the tests that make databases, in PostgreSQL's own file.
    printf '*:5432:*:postgres:%s\n' "$superpw" >"$state/pgpass"
    chmod 600 "$state/pgpass"
    # The seats' own role and database; the tables are made by the set-up tool.
    PGPASSFILE="$state/pgpass" "$bin/psql" -q -X -v ON_ERROR_STOP=1 -h "$dir" -p 5432 -U postgres -d postgres \
      -c "CREATE ROLE vorlane LOGIN PASSWORD '$seatpw'" \
      -c "CREATE DATABASE vorlane OWNER vorlane" \
      -c "CREATE DATABASE vorlane_c OWNER vorlane TEMPLATE template0 ENCODING 'UTF8' LOCALE 'C'"

    cat >"$state/odbcinst.ini" <<EOF
[PostgreSQL Unicode]
Description = PostgreSQL ODBC driver (Unicode version)
Driver = $driver
EOF
    cat >"$state/odbc.ini" <<EOF
[Vorlane]
Driver = PostgreSQL Unicode
Servername = $dir
Port = 5432
Database = vorlane
Username = vorlane
Password = $seatpw

[VorlaneNoLogin]
Driver = PostgreSQL Unicode
Servername = $dir
Port = 5432
Database = vorlane

[VorlaneWrongPassword]
Driver = PostgreSQL Unicode
Servername = $dir
Port = 5432
Database = vorlane
Username = vorlane
Password = not-$seatpw

[VorlaneLocaleC]
Driver = PostgreSQL Unicode
Servername = $dir
Port = 5432
Database = vorlane_c
Username = vorlane
Password = $seatpw

[VorlaneDown]
Driver = PostgreSQL Unicode
Servername = $dir/none
Port = 5432
Database = vorlane
Username = vorlane
Password = $seatpw
EOF
    ;;
  stop)
    stop
    ;;
  pause) # the server stops, its cluster stays
    dir=$(cat "$state/cluster")
    as_owner "$dir" "$(cat "$dir/bin")/pg_ctl" -D "$dir/data" -m fast -w stop >/dev/null
    ;;
  resume)
    serve "$(cat "$state/cluster")"
    ;;
  *)
    echo "usage: pgserver.sh start|stop|pause|resume <state folder> [<server bin folder> <psqlODBC driver>]" >&2
    exit 2
    ;;
esac
