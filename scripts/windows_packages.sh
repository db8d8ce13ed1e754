# Sourced by package: zips of both Windows builds and a package for NuGet, made, and used by a stranger's program.
# Expects to be sourced from the repository's root.
source scripts/windows.sh

declare -A TRIPLES=([win32]=i686-w64-mingw32 [win64]=x86_64-w64-mingw32)
declare -A MACHINES=([win32]=i386 [win64]=i386:x86-64)  # as the maker of import libraries calls them
declare -A WORD_SIZES=([win32]=x86 [win64]=x64)

# stage PRESET FOLDER: what a user gets of a build, with the import library for linkers other than MinGW's.
stage() {
    cmake --install "build/$1" --prefix "$2" >/dev/null
    cp LICENSE "$2"
    local definition=("$2"/lib/*SDK.def)
    local library=${definition[0]%.def}
    llvm-dlltool -m "${MACHINES[$1]}" -k -D "$(basename "$library").dll" -d "$library.def" -l "$library.lib"
}

# try_zip PRESET ZIP: a program outside of this tree is built with both import libraries and talks to a virtual printer;
# all that runs comes out of the zip.
try_zip() {
    local preset=$1 bin="$strangers/$1/bin" kestrel printer import
    local compile=("${TRIPLES[$preset]}-gcc" -std=c11 -Wall -Werror "-I$strangers/$1/include" debian/tests/redials.c)
    kestrel=(scripts/wine.sh "$bin/kestrel.exe")
    python3 -m zipfile -e "$2" "$strangers/$preset"
    (cd "$strangers/$preset" && sha256sum --check --quiet SHA256SUMS)
    "${compile[@]}" -o "$bin/mingw.exe" "-L$strangers/$1/lib" -lZRIJ9900SDK
    "${compile[@]}" -o "$bin/msvc.exe" "$strangers/$1/lib/ZRIJ9900SDK.lib"
    if ! can_run "$preset"; then
        echo "not run  the programs of $preset: this machine cannot run them (see above)"
        return
    fi

    export WINEPREFIX
    WINEPREFIX=$(wine_prefix "$preset")
    scripts/wine.sh "$bin/kestrel-vprinter.exe" --port USB001 >"$strangers/printer" 2>&1 &
    printer=$!
    for _ in $(seq 300); do
        ! grep -q '^ready' "$strangers/printer" || break
        sleep 0.1
    done
    "${kestrel[@]}" setup
    "${kestrel[@]}" printers add Office --port USB001
    for import in mingw msvc; do
        [ "$(scripts/wine.sh "$bin/$import.exe" | tr -d '\r')" = 9 ]
        echo "passed   $preset: a program linked with the import library for $import"
    done
    "${kestrel[@]}" printers remove Office
    kill $printer
    wait $printer || :
}

# try_nuget PACKAGE: what its targets do in a build; what they tell the compiler and the linker, tests/package reads.
try_nuget() {
    local project="$strangers/nuget" platform
    python3 -m zipfile -e "$1" "$project"
    cat >"$project/some.proj" <<'END'
<Project DefaultTargets="Build" ToolsVersion="4.0" xmlns="http://schemas.microsoft.com/developer/msbuild/2003">
  <PropertyGroup><OutDir>out/$(Platform)/</OutDir></PropertyGroup>
  <Import Project="build/native/KestrelSDK.targets" />
  <Target Name="PrepareForBuild" />
  <Target Name="Build" DependsOnTargets="PrepareForBuild" />
</Project>
END
    for platform in x64 Win32; do xbuild /nologo /verbosity:quiet /p:Platform=$platform "$project/some.proj"; done
    cmp "$project"/out/x64/*SDK.dll "$strangers"/win64/bin/*SDK.dll
    cmp "$project"/out/Win32/*SDK.dll "$strangers"/win32/bin/*SDK.dll
    if xbuild /nologo /p:Platform=ARM64 "$project/some.proj" >"$project/log"; then return 1; fi
    grep -q 'no library for the platform ARM64' "$project/log"
    echo "passed   NuGet: a project gets the library of its platform"
}

windows_packages() {
    install_packages "${BUILD_PACKAGES[@]}" "${WINDOWS_BUILD_PACKAGES[@]}" llvm mono-xbuild python3
    export SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct 2>/dev/null || stat -c %Y CHANGELOG.md)}
    local folder="$PACKAGES/windows" preset
    rm -rf "$folder"
    mkdir -p "$folder"
    for preset in win32 win64; do
        build_programs "$preset"
        stage "$preset" "$folder/$preset"
    done
    say "Packing"
    scripts/pack_windows.py "$folder" "$folder/win32" "$folder/win64"
    rm -r "$folder/win32" "$folder/win64"
    (cd "$folder" && cat SHA256SUMS)

    say "Using what the zips hold, under Wine"
    find_runnable
    strangers=$(mktemp -d)
    trap 'stop_wine; rm -rf "$strangers"' EXIT
    start_wine
    for preset in win32 win64; do try_zip "$preset" "$folder"/*-windows-"${WORD_SIZES[$preset]}".zip; done
    try_nuget "$folder"/*.nupkg
}
