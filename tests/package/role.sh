#!/bin/sh -e
# Ansible's role in a system without the packages: it installs them from the files in /trial, brings a printer to a wanted
# state, and has nothing to do the second time. Run by root, in /trial.
apt-get install -qq --no-install-recommends ansible-core >/dev/null
export ANSIBLE_LIBRARY=/trial/ansible/library ANSIBLE_ROLES_PATH=/trial/ansible/roles ANSIBLE_NOCOLOR=1 LC_ALL=C.UTF-8

packages=$(find /trial -maxdepth 1 -name '*.deb' ! -name '*dbgsym*' | sort | sed 's/.*/"&"/' | paste -sd,)
play() { # SETTINGS, as JSON: prints what Ansible says of its tasks
    cat >/trial/book.json <<END
[{"hosts": "localhost", "connection": "local", "gather_facts": false,
  "vars": {"ansible_python_interpreter": "/usr/bin/python3"},
  "roles": [{"role": "kestrel", "kestrel_packages": [$packages], "kestrel_settings": $1}]}]
END
    ansible-playbook -i localhost, /trial/book.json | tee /trial/said
}
is_told() { grep -Eq "$1" /trial/said || { echo "expected \"$1\"" >&2; exit 1; }; }

play '{}'
is_told 'changed=[1-9].* failed=0'
kestrel setup >/dev/null
kestrel printers add Office --port USB001 >/dev/null
kestrel-vprinter --port USB001 --quiet --trace none &
printer=$!
trap 'kill $printer; wait $printer' EXIT
sleep 1

play '{"fax.redials": 5}'
is_told 'changed=1 .* failed=0'
[ "$(kestrel -p Office get fax.redials)" = 5 ]
play '{"fax.redials": 5}'
is_told 'changed=0 .* failed=0'
