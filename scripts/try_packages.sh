# Sourced by package: its packages as strangers meet them. Expects to be sourced from the repository's root.

# What the tests need besides, and what apt would keep since others suggest it; and the account that runs them.
TRIAL_PACKAGES=(gcc libc6-dev pkg-config man-db bash-completion systemd python3)
ACCOUNT=somebody
passed=0 failed=0

# check NAME COMMAND...
check() {
    local name=$1
    shift
    say "$name"
    if "$@"; then
        passed=$((passed + 1))
        echo "passed  $name"
    else
        failed=$((failed + 1))
        echo "FAILED  $name" >&2
    fi
}

# Of the whole system, but for what dpkg and apt write about their own work, caches, and our own.
list_files() {
    as_root find "$bare_root" -mindepth 1 -printf '/%P %y %m %u:%g\n' | sort |
        grep -vE '^/(var/(log|cache|lib/(dpkg|apt))|trial|proc|etc/ld.so.cache|etc/systemd/system/trial.service)\b'
}

test_in_session() { in_bare_system $ACCOUNT "sh -e /trial/tests/$1"; }

test_after_boot() {
    local code=0
    boot_bare_system "/trial/tests/$1" || code=$?
    as_root cat "$bare_root/var/log/trial"
    return $code
}

purge_leaves_nothing() {
    in_bare_system root "apt-get purge -qq --autoremove $(cd "$PACKAGES/debian" && echo ./*.deb |
        sed 's#\./\([^_ ]*\)_[^ ]*#\1#g') >/dev/null"
    list_files | diff "$bare_root.before" -
}

try_packages() {
    local packages=("$PACKAGES"/debian/*.deb)
    [ -e "${packages[0]}" ] || { echo "There are no packages yet: scripts/package deb makes them." >&2; return 1; }
    make_bare_system
    trap close_bare_system EXIT
    open_bare_system trial
    as_root mkdir "$bare_root/trial"
    as_root cp -r "${packages[@]}" debian/tests fleet/ansible tests/package/role.sh "$bare_root/trial"
    say "A bare Debian 12, and in it what the tests need besides the packages: ${TRIAL_PACKAGES[*]}"
    in_bare_system root "apt-get update -qq && apt-get install -qq --no-install-recommends ${TRIAL_PACKAGES[*]} \
        >/dev/null && useradd --create-home --shell /bin/bash $ACCOUNT"

    boot_bare_system /bin/true  # init leaves files at its first start
    list_files >"$bare_root.before"
    check "they are installed" in_bare_system root "apt-get install -qq /trial/*.deb >/dev/null"
    check "command line" test_in_session command-line
    check "C program" test_in_session c-program
    check "Python program" test_in_session python-program
    check "service" test_after_boot service
    check "nothing is left after they are purged" purge_leaves_nothing
    check "Ansible's role" in_bare_system root "cd /trial && ./role.sh"

    printf '\n%d passed, %d failed\n' $passed $failed
    [ $failed -eq 0 ]
}
