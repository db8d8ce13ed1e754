# Sourced by test.sh and package after prepare.sh: the build for arm64, and what of it QEMU can run on this machine.
# Expects to be sourced from the repository's root.

ARM64_BUILD_PACKAGES=(g++-aarch64-linux-gnu mmdebstrap qemu-user-static)
ARM64_LIBRARIES="$PWD/build/arm64-libraries"
ARM64_BINFMT=/proc/sys/fs/binfmt_misc/kestrel-arm64
# Where Debian's QEMU looks for the libraries of every program, whatever its environment says.
ARM64_LINK=/etc/qemu-binfmt/aarch64

# What is left out of the suites: a pattern of names, and why. Each must be met by a case.
ARM64_LEFT_OUT=(
    '^contract\.Sandbox\.' "QEMU does not know seccomp"
    '^contract\.Registry\.(A_text_counted_without|Bytes_that_cannot_be_read)' "QEMU does not know process_vm_readv"
    '^(contract\.(Sections\.(Data_begins|A_read_only)|Object_files\.Are_mapped)|process\.Channel\.The_eight_objects)'
    "QEMU refuses mremap of an old size of 0, by which a view becomes read only"
    '^(contract\.FoundPrograms\.What_cannot_be_run|process\.Record\.Secrets)'
    "QEMU forks where posix_spawn shares memory: that a program cannot be executed is not told to its starter"
    '^contract\.FoundPrograms\.One_that_nobody_could_watch' "QEMU ends a process that may not have one more thread"
    '^crash\.Kills\.' "QEMU does not know ptrace"
    '^robust\.Leaks\.' "the memory of a process is QEMU's, which keeps what it has translated"
    '^bindings\.(python|csharp)\.' "this machine's interpreters cannot load the library"
    '^install\.(programs|examples|readme)' "this machine's compiler makes programs for this machine"
    '^(install\.abi|house|manual|package)' "nothing of the processor in it, or this processor's record"
)

# Sets arm64_runs to whether this machine can build it and run it; when not, says why.
find_arm64() {
    arm64_runs=false
    if ! install_packages "${ARM64_BUILD_PACKAGES[@]}" || ! fetch_arm64_libraries; then
        warn "THE PACKAGES FOR ARM64 CANNOT BE HAD HERE (see above): nothing is built for it."
    elif ! emulate_arm64; then
        warn "THIS MACHINE CANNOT RUN PROGRAMS FOR ARM64 (binfmt_misc could not be told of QEMU): it is not built."
    else
        arm64_runs=true
    fi
}

# Headers and libraries in a folder of their own. One suite alone: its versions fit each other, which those of this
# system's foreign architectures do only while every mirror is in step.
fetch_arm64_libraries() {
    [ ! -e "$ARM64_LIBRARIES/usr/include" ] || return 0
    say "Fetching the libraries for arm64"
    rm -rf "$ARM64_LIBRARIES" "$ARM64_LIBRARIES.new"
    mkdir -p "$ARM64_LIBRARIES.new"
    # Of the rest, the emulated programs would find this instead of the system's own.
    as_root mmdebstrap --quiet --arch=arm64 --variant=extract --format=tar bookworm - \
        "deb http://deb.debian.org/debian bookworm main" --include=libc6-dev,libstdc++-12-dev,libsqlite3-dev \
        --include=libcli11-dev,nlohmann-json3-dev,libfmt-dev,libcpp-httplib-dev,libncurses-dev,libgtest-dev,libgmock-dev |
        tar -x --no-same-owner -C "$ARM64_LIBRARIES.new" ./lib ./usr || return 1
    # A library whose link leads out of the folder is not found, and its static form is linked in silence.
    find "$ARM64_LIBRARIES.new" -type l -lname '/*' -printf '%P\t%l\n' | while IFS=$'\t' read -r link target; do
        ln -sfr "$ARM64_LIBRARIES.new$target" "$ARM64_LIBRARIES.new/$link"
    done
    mv "$ARM64_LIBRARIES.new" "$ARM64_LIBRARIES"
}

# Has the kernel start programs for arm64 with QEMU, until stop_arm64: tests start programs that start others.
emulate_arm64() {
    register_arm64 && as_root mkdir -p "${ARM64_LINK%/*}" && as_root ln -sfn "$ARM64_LIBRARIES" "$ARM64_LINK"
}

register_arm64() {
    local magic='\x7fELF\x02\x01\x01\x00\x00\x00\x00\x00\x00\x00\x00\x00\x02\x00\xb7\x00'
    local mask='\xff\xff\xff\xff\xff\xff\xff\x00\xff\xff\xff\xff\xff\xff\xff\xff\xfe\xff\xff\xff'
    local folder=${ARM64_BINFMT%/*}
    [ ! -e "$ARM64_BINFMT" ] || return 0
    [ -e "$folder/register" ] || as_root mount -t binfmt_misc none "$folder" || return 1
    as_root sh -c "printf '%s' ':kestrel-arm64:M::$magic:$mask:/usr/bin/qemu-aarch64-static:POCF' >$folder/register"
}

stop_arm64() {
    [ ! -e "$ARM64_BINFMT" ] || as_root sh -c "echo -1 >$ARM64_BINFMT"
    [ ! -L "$ARM64_LINK" ] || as_root rm "$ARM64_LINK"
}

# What emulates Wine's 32-bit programs is told by the environment, and would hold for these too.
without_wine() {
    local QEMU_SET_ENV QEMU_CPU
    unset QEMU_SET_ENV QEMU_CPU
    "$@"
}

build_arm64() { without_wine build_preset arm64; }

run_arm64_suites() {
    local i pattern count names all=""
    names=$(without_wine ctest --preset arm64 -N -LE 'slow|builds' | sed -n 's/^ *Test *#[0-9]*: //p')
    for ((i = 0; i < ${#ARM64_LEFT_OUT[@]}; i += 2)); do
        pattern=${ARM64_LEFT_OUT[i]}
        count=$(grep -cE "$pattern" <<<"$names") || { echo "No case is called $pattern." >&2; return 1; }
        left_out+=("arm64: $count cases of $pattern: ${ARM64_LEFT_OUT[i + 1]}")
        all+="${all:+|}$pattern"
    done
    without_wine run_suites arm64 arm64 -j2 -LE 'slow|builds' -E "$all"
}
