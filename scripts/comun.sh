# Helpers shared by the scripts (sourced, not run).

# Runs a command as root: directly when already root, through sudo otherwise.
como_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo > /dev/null; then
        sudo "$@"
    else
        echo "Hace falta ser root o poder usar sudo para: $*" >&2
        return 1
    fi
}

# Runs a command as the user who started the script: when it was started with sudo, as
# the user behind sudo, so build/ and the program's data folder belong to that user.
como_usuario() {
    if [ "$(id -u)" -eq 0 ] && [ -n "${SUDO_USER:-}" ] && [ "$SUDO_USER" != root ]; then
        runuser -u "$SUDO_USER" -- "$@"
    else
        "$@"
    fi
}

# Runs a command as the database server's own user, from a folder that user may enter.
como_postgres() {
    if [ "$(id -u)" -eq 0 ]; then
        (cd / && runuser -u postgres -- "$@")
    else
        (cd / && sudo -u postgres "$@")
    fi
}
