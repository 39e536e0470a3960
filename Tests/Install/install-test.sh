#!/usr/bin/env bash
# One test of what is installed. Usage: install-test.sh TEST BUILD SCRATCH
# Status 77: a program that the test asks is not installed.
set -euo pipefail
build="$2"
scratch="$3"
first="$scratch/first place"
prefix="$scratch/another place"

fail() {
    echo "$1" >&2
    exit 1
}

# Fails unless the output of a command that has to fail says so. Usage: expect_failure TEXT COMMAND...
expect_failure() {
    local text="$1" output
    shift
    if output="$("$@" 2>&1)"; then
        fail "this should have failed: $*"
    fi
    [[ "$(tr -s '\n ' ' ' <<<"$output")" == *"$text"* ]] || fail "'$text' is not said by: $*"$'\n'"$output"
}

# A folder for a test, empty.
empty_folder() {
    rm -rf "$scratch/$1"
    mkdir -p "$scratch/$1"
    cd "$scratch/$1"
}

# Writes a CMakeLists.txt that finds the package. Usage: project FIND_PACKAGE_ARGUMENTS [MORE]
project() {
    printf 'cmake_minimum_required(VERSION 3.25)\nproject(Try LANGUAGES C CXX)\nfind_package(Dorn %s)\n%s\n' \
        "$1" "${2:-}" >CMakeLists.txt
}

pkg_version() {
    sed -n 's/^Version: //p' "$prefix/lib/pkgconfig/dorn.pc"
}

configure() {
    "$CMAKE" -S . -B build -DCMAKE_PREFIX_PATH="$prefix" "$@"
}

IsWholeAndCanBeMoved() {
    rm -rf "$scratch"
    mkdir -p "$scratch"
    local component
    for component in runtime dev tools; do
        "$CMAKE" --install "$build" --prefix "$first" --component $component >"$scratch/install.log"
    done
    mv "$first" "$prefix"
    local file
    for file in bin/dorn include/dorn/library/Service.hpp include/dorn/library/raml/RamlParser.hpp \
        include/dorn/library/boundaryIf/AbstractBif.hpp include/dorn/library/rad/ERadHwapi.h \
        include/dorn/testkit/FailNth.hpp lib/libdorn_common.a lib/cmake/Dorn/DornConfig.cmake \
        lib/pkgconfig/dorn.pc lib/systemd/system/dorn-service@.service \
        lib/systemd/system/dorn-gateway.service share/man/man1/dorn-rad.1 \
        share/bash-completion/completions/dorn share/zsh/vendor-completions/_dorn \
        libexec/dorn/DornClimateSExe share/dorn/boards/tarn-single.dtb \
        bin/dorn-conformance include/dorn/conformance/Conformance.hpp lib/libdorn_conformance.a \
        lib/cmake/Dorn/Dorn-conformance.cmake lib/pkgconfig/dorn-conformance.pc share/man/man1/dorn-conformance.1 \
        share/doc/dorn/LICENSE share/doc/dorn-dev/LICENSE share/doc/dorn-tools/LICENSE; do
        [ -f "$prefix/$file" ] || fail "$file is not installed"
    done
    cmp "$SOURCES/CHANGELOG.md" "$prefix/share/doc/dorn-dev/CHANGELOG.md"
    diff -r --exclude CMakeLists.txt --exclude Doxyfile "$SOURCES/Docs" "$prefix/share/doc/dorn-dev/Docs"
    [ "$("$prefix/bin/dorn" --version)" = "dorn $(pkg_version)" ]
}

NamesNoPlaceOfTheMachine() {
    local place
    for place in "$SOURCES" "$build" "$first"; do
        if grep -rlF "$place" "$prefix"; then
            fail "these name $place"
        fi
    done
}

# LICENSE and the copyright of the packages are one text in two forms.
LicenceIsThatOfThePackages() {
    local copyright="$SOURCES/packaging/debian/copyright"
    cmp <(sed -n '/^Permission/,$p' "$prefix/share/doc/dorn/LICENSE") \
        <(sed -n 's/^ //; s/^\.$//; /^Permission/,$p' "$copyright")
    grep -qxF "Copyright (c) $(sed -n 's/^Copyright: //p' "$copyright")" "$prefix/share/doc/dorn/LICENSE" ||
        fail "LICENSE and the packages' copyright name different holders"
}

HeadersNeedNothingElse() {
    empty_folder headers
    local part header spelled
    for part in library host testkit conformance; do
        while IFS= read -r header; do
            spelled="${header#"$prefix/include/dorn/$part/"}"
            echo "#include \"$spelled\"" >>all.cpp
            [ "$part" != library ] || [[ "$header" != *.h ]] || echo "#include \"$spelled\"" >>all.c
        done < <(find "$prefix/include/dorn/$part" -name '*.h' -o -name '*.hpp' | sort)
    done
    # Of these folders a user may include everything.
    while IFS= read -r header; do
        grep -qxF "#include \"$header\"" all.cpp || fail "$header is not installed"
    done < <(cd "$SOURCES/Common/src" && find boundaryIf raml/dataclasses reqforwarding -name '*.hpp')
    [ "$(wc -l <all.cpp)" -gt 120 ] || fail "only $(wc -l <all.cpp) headers are installed"
    [ -z "$(sort all.cpp | uniq -d)" ] || fail "two headers are spelled alike: $(sort all.cpp | uniq -d)"
    [ "$(wc -l <all.c)" -gt 30 ] || fail "only $(wc -l <all.c) headers are for C"
    project 'REQUIRED COMPONENTS dorn testkit conformance' 'add_library(inC OBJECT all.c)
        target_link_libraries(inC PRIVATE dorn::dorn)
        set_target_properties(inC PROPERTIES C_STANDARD 11 C_STANDARD_REQUIRED ON C_EXTENSIONS OFF)
        find_package(GTest REQUIRED)
        add_library(inCpp OBJECT all.cpp)
        target_link_libraries(inCpp PRIVATE dorn::testkit dorn::conformance GTest::gtest)'
    configure
    "$CMAKE" --build build
}

# Does what the command says comes next, word for word.
NewServiceIsBuiltTestedAndRun() {
    empty_folder "services"
    local answer
    answer="$("$prefix/bin/dorn" new service Fan --directory "my services/Fan" 2>&1)" && fail "no folder 'my services' yet"
    mkdir "my services"
    answer="$("$prefix/bin/dorn" new service Fan --directory "my services/Fan")"
    echo "$answer"
    sed -n '/^Build it/,$s/^  //p' <<<"$answer" >next-steps
    [ "$(wc -l <next-steps)" -eq 3 ] || fail "three commands should come next"
    bash -euo pipefail next-steps | tee steps.log
    grep -q '100% tests passed, 0 tests failed out of 4' steps.log || fail "the service's four tests have not run"
    cd "my services/Fan"
    run_fan
    # The steps of README.md are the same, and DornFanExe is installed by the service's own rules.
    grep -qxF "    $(sed -n 2p ../../next-steps)" README.md || fail "README.md builds it in another way"
    "$CMAKE" --install build --prefix "$scratch/services/installed"
    [ -x "$scratch/services/installed/bin/DornFanExe" ]
}

# Every file that the page on new services shows is what is made.
TutorialShowsWhatIsMade() {
    empty_folder tutorial
    "$prefix/bin/dorn" new service Fan >/dev/null
    python3 - "$SOURCES/Docs/new-service.md" <<'PYTHON'
import pathlib
import re
import sys

shown = re.findall(r"<!-- made: (\S+) -->\n```\w*\n(.*?)```\n", pathlib.Path(sys.argv[1]).read_text(), flags=re.DOTALL)
assert len(shown) > 3, f"only {len(shown)} files are shown"
for name, text in shown:
    assert text in pathlib.Path("Fan", name).read_text(), f"this does not stand in {name}:\n{text}"
PYTHON
}

# Runs the service as its README.md says, talks to it and ends it.
run_fan() {
    export DORN_RUN_DIR
    DORN_RUN_DIR="$(mktemp -d)"
    build/DornFanExe 2>fan.log &
    local pid=$! status=0 tries=0
    until "$prefix/bin/dorn" service list 2>/dev/null | grep -q 'Fan .*2 waiting'; do
        kill -0 "$pid" || fail "DornFanExe does not run: $(<fan.log)"
        tries=$((tries + 1))
        [ "$tries" -lt 600 ] || fail "DornFanExe does not get ready: $("$prefix/bin/dorn" service list)"
        sleep 0.05
    done
    local answer
    answer="$(sed -n 's/^ *dorn msg send/msg send/p' README.md | xargs "$prefix/bin/dorn")"
    echo "$answer"
    [[ "$answer" == *"0x3002 from Fan 0x0300, 12 bytes"*"07 00 00 00 28 00 00 00  01 00 00 00"* ]] ||
        fail "this is no answer: $answer"
    kill -TERM "$pid"
    wait "$pid" || status=$?
    [ "$status" -eq 1 ] || fail "DornFanExe has ended with status $status: $(<fan.log)"
    rm -rf "$DORN_RUN_DIR"
}

ServicesBuildWithoutCMake() {
    command -v pkg-config >/dev/null || exit 77
    empty_folder "without cmake"
    "$prefix/bin/dorn" new service Fan >/dev/null
    export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
    pkg-config --validate dorn dorn-service dorn-testkit
    local words
    eval "words=($(pkg-config --cflags --libs dorn-service))"
    "$CXX" -std=c++20 Fan/main.cpp Fan/Fan.cpp "${words[@]}" -o DornFanExe
    ./DornFanExe --help 2>help || [ $? -eq 1 ]
    grep -q '^DornFanExe \[options\]' help || fail "no usage: $(<help)"
    eval "words=($(pkg-config --cflags --libs dorn-testkit))"
    "$CXX" -std=c++20 Fan/FanTest.cpp Fan/Fan.cpp "${words[@]}" -lgmock -lgtest -lgtest_main -o FanTest
    ./FanTest
}

# An integrator has the library alone, and a platform of his own; here ours, as he would name his.
PlatformStandsBehindTheLibrary() {
    empty_folder integrator
    "$prefix/bin/dorn" new service Fan >/dev/null
    project 'REQUIRED COMPONENTS dorn' "dorn_add_service(Fan SOURCES Fan/main.cpp Fan/Fan.cpp
        PLATFORM \"$prefix/lib/libdorn_board.a\" \"$prefix/lib/libdorn_host.a\" lmdb fdt)"
    configure
    "$CMAKE" --build build
    build/DornFanExe --help 2>help || [ $? -eq 1 ]
    grep -q '^DornFanExe \[options\]' help || fail "no usage: $(<help)"
}

# Fails unless a program of the conformance suite keeps all rules of semaphores. Usage: keeps_its_rules PROGRAM
keeps_its_rules() {
    DORN_RUN_DIR="$(mktemp -d)"
    DORN_RUN_DIR="$DORN_RUN_DIR" "$1" --directory "$PWD/files" 'sem.*' >rules.log 2>&1 || fail "$1: $(<rules.log)"
    rm -rf "$DORN_RUN_DIR"
    local kept
    kept="$(grep -c '^kept     sem\.' rules.log)"
    [ "$kept" -ge 10 ] || fail "only $kept rules were tried: $(<rules.log)"
    [ "$(tail -n 1 rules.log)" = "$kept rules: $kept kept, 0 broken, 0 skipped" ] || fail "$(<rules.log)"
}

# As an integrator does it, who has no providers of ours; and the program that is installed.
ConformanceIsLinkedWithAPlatform() {
    empty_folder conformance
    cp "$SOURCES/Conformance/main.cpp" .
    project 'REQUIRED COMPONENTS conformance' "add_executable(board-conformance main.cpp)
        set(providers \"\$<LINK_GROUP:RESCAN,$prefix/lib/libdorn_host.a,$prefix/lib/libdorn_board.a>\" lmdb fdt)
        target_link_libraries(board-conformance PRIVATE dorn::conformance \${providers})
        if(TARGET dorn::service)
            message(FATAL_ERROR \"the provider comes unasked\")
        endif()"
    configure
    "$CMAKE" --build build
    keeps_its_rules build/board-conformance
    keeps_its_rules "$prefix/bin/dorn-conformance"
}

# With the line of the integrator's guide.
ConformanceIsLinkedWithoutCMake() {
    command -v pkg-config >/dev/null || exit 77
    empty_folder "conformance without cmake"
    cp "$SOURCES/Conformance/main.cpp" .
    export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
    pkg-config --validate dorn-conformance
    local ask='$(pkg-config --cflags --libs dorn-conformance)' yours='libyour_platform.a libyour_drivers.a' line
    line="$(grep -F "$ask" "$prefix/share/doc/dorn-dev/Docs/integrators-guide.md")"
    [[ "$line" == "    g++ "*"$yours"* ]] || fail "the guide does not say how to link with one's own: $line"
    line="${line/"$ask"/"$(pkg-config --cflags --libs dorn-conformance)"}"
    line="${line/"$yours"/"-Wl,--start-group '$prefix'/lib/libdorn_{host,board}.a -Wl,--end-group -llmdb -lfdt"}"
    eval "${line/g++/"'$CXX'"}"
    keeps_its_rules ./board-conformance
}

PackageTellsWhatItHasNot() {
    empty_folder package
    project '0.1 REQUIRED COMPONENTS common raml firmware'
    configure
    # Only the library was asked for: the provider's dependencies need not be there, and its targets are not.
    project '0.1 REQUIRED COMPONENTS common' 'if(TARGET dorn::service)
        message(FATAL_ERROR "the provider comes unasked")
        endif()'
    configure
    project '0.1 REQUIRED COMPONENTS common gateway'
    expect_failure "The component 'gateway' is not installed." configure
    project '0.1 COMPONENTS gateway' 'if(Dorn_FOUND)
        message(FATAL_ERROR "found what is not there")
        endif()'
    configure
    project '0.2 REQUIRED'
    expect_failure 'compatible with requested version "0.2"' configure
}

ServiceNamesAreChecked() {
    empty_folder names
    project REQUIRED 'dorn_add_service(FanExe SOURCES main.cpp)'
    expect_failure "'FanExe' cannot be a service's name" configure
    project REQUIRED 'dorn_add_service("Fan Two" SOURCES main.cpp)'
    expect_failure "'Fan Two' cannot be a service's name" configure
    project REQUIRED 'dorn_add_service(Fan LIBRARIES dorn::dorn)'
    expect_failure "dorn_add_service(Fan): SOURCES are missing" configure
    project REQUIRED 'dorn_add_service(Fan stray SOURCES main.cpp)'
    expect_failure "dorn_add_service(Fan): 'stray' is none of SOURCES, LIBRARIES and PLATFORM" configure
    project 'REQUIRED COMPONENTS dorn' 'dorn_add_service(Fan SOURCES main.cpp)'
    expect_failure "this installation has no provider of the platform" configure
    cp "$SOURCES/Tests/Install/climate/CMakeLists.txt" CMakeLists.txt
    echo 'int main() {}' >main.cpp
    configure
}

ManualIsWellFormed() {
    command -v man >/dev/null || exit 77
    local page warnings
    for page in "$prefix"/share/man/man1/*.1; do
        warnings="$(LC_ALL=C.UTF-8 MANROFFSEQ='' MANWIDTH=80 man --warnings --encoding=UTF-8 --troff-device=utf8 \
            --ditroff --local-file "$page" 2>&1 >/dev/null)"
        [ -z "$warnings" ] || fail "$page: $warnings"
    done
    MANWIDTH=80 man --local-file "$prefix/share/man/man1/dorn-rad.1" | col -b >"$scratch/dorn-rad.txt"
    grep -q 'dorn rad set PARAMETER' "$scratch/dorn-rad.txt" || fail "the page of 'dorn rad' does not show its verbs"
    if command -v mandoc >/dev/null; then
        # A page without a date is meant: the same sources give the same page.
        warnings="$(mandoc -T lint -W warning "$prefix"/share/man/man1/*.1 | grep -v 'missing date' || true)"
        [ -z "$warnings" ] || fail "$warnings"
    fi
}

CompletionIsSourced() {
    local proposals
    proposals="$(bash -c '. "$1"; COMP_WORDS=(dorn new s); COMP_CWORD=2; _dorn; echo "${COMPREPLY[@]}"' bash \
        "$prefix/share/bash-completion/completions/dorn")"
    [ "$proposals" = service ] || fail "bash proposes '$proposals'"
    command -v zsh >/dev/null || return 0
    # Loaded and run as by the first press of the key in a terminal.
    proposals="$(zsh -f -c 'fpath=($1 $fpath); autoload -U compinit && compinit -D -u
        whence -w _dorn; print $_comps[dorn]' zsh "$prefix/share/zsh/vendor-completions")"
    [ "$proposals" = $'_dorn: function\n_dorn' ] || fail "zsh knows: $proposals"
}

UnitsAreVerified() {
    command -v systemd-analyze >/dev/null || exit 77
    empty_folder unit
    cp "$prefix/lib/systemd/system/dorn-service@.service" dorn-service@ClimateS.service # verified as an instance
    cp "$prefix/lib/systemd/system/dorn-gateway.service" .
    local complaints
    complaints="$(systemd-analyze verify --man=no ./dorn-service@ClimateS.service ./dorn-gateway.service 2>&1 |
        grep dorn || true)"
    [ -z "$complaints" ] || fail "$complaints"
    grep -qx 'SuccessExitStatus=1' dorn-service@ClimateS.service
}

# What a package holds, without folders. Usage: files_of PACKAGE
files_of() {
    dpkg-deb -c "$1"_*.deb | sed -n 's|^[^d].* \./usr/||p' | sort
}

# Fails unless a package needs others, with or without a version. Usage: expect_depends PACKAGE NEEDED...
expect_depends() {
    local package="$1" depends needed
    depends=", $(dpkg-deb -f "$package"_*.deb Depends), "
    for needed in "${@:2}"; do
        [[ "$depends" =~ ", $needed"( \(|, ) ]] || fail "$package does not need $needed, but: $depends"
    done
}

# Fails unless the three packages hold what is installed, each file in one of them, with what Debian wants of each.
expect_all_that_is_installed() {
    local package
    for package in dorn dorn-dev dorn-tools; do
        files_of $package
    done | sort >packed
    {
        # Manual pages are compressed, and copyright stands for the licence.
        (cd "$prefix" && find . ! -type d -printf '%P\n') | sed 's|^share/man/.*|&.gz|; /^share\/doc\/[^/]*\/LICENSE$/d'
        printf 'share/doc/%s/changelog.gz\nshare/doc/%s/copyright\n' \
            dorn dorn dorn-dev dorn-dev dorn-tools dorn-tools
    } | sort >installed
    diff installed packed
}

# Fails unless a package holds files. Usage: expect_files PACKAGE FILE...
expect_files() {
    local file
    files_of "$1" >files
    for file in "${@:2}"; do
        grep -qxF "$file" files || fail "$1 does not hold $file"
    done
}

PackagesAreMade() {
    command -v dpkg-deb >/dev/null || exit 77
    command -v dpkg-shlibdeps >/dev/null || exit 77
    command -v file >/dev/null || exit 77
    empty_folder packages
    "$CPACK" --config "$build/CPackConfig.cmake" -B "$PWD"
    rm -rf _CPack_Packages
    local version architecture package
    version="$(pkg_version)"
    architecture="$(dpkg --print-architecture)"
    [ "$(echo *)" = "dorn-dev_${version}_$architecture.deb dorn-tools_${version}_$architecture.deb \
dorn_${version}_$architecture.deb" ] || fail "these are the packages: $(echo *)"
    for package in dorn dorn-dev dorn-tools; do
        [ "$(dpkg-deb -f "$package"_*.deb Package Version Architecture)" = "Package: $package
Version: $version
Architecture: $architecture" ] || fail "$(dpkg-deb -I "$package"_*.deb)"
        dpkg-deb --fsys-tarfile "$package"_*.deb | tar -xO "./usr/share/doc/$package/changelog.gz" | zcat >changelog
        grep -qF "$package ($version)" changelog || fail "the changelog of $package is not its own"
        grep -qF /usr/share/doc/dorn-dev/CHANGELOG.md changelog || fail "the changelog does not lead to what is new"
        rm changelog
    done
    expect_depends dorn libc6 libstdc++6 liblmdb0 libarchive13
    expect_depends dorn-dev libboost-dev zlib1g-dev liblmdb-dev libfdt-dev libc6 libstdc++6 liblmdb0
    expect_depends dorn-tools libc6 "dorn (= $version)"
    expect_all_that_is_installed
    expect_files dorn bin/dorn lib/systemd/system/dorn-service@.service lib/systemd/system/dorn-gateway.service \
        lib/sysusers.d/dorn.conf share/man/man1/dorn.1.gz share/man/man1/dorn-gateway.1.gz
    expect_files dorn-dev bin/dorn-conformance share/man/man1/dorn-conformance.1.gz lib/libdorn_common.a \
        lib/pkgconfig/dorn-service.pc lib/cmake/Dorn/DornConfig.cmake include/dorn/library/Service.hpp \
        share/doc/dorn-dev/CHANGELOG.md share/doc/dorn-dev/Docs/pictures/overview.svg
    expect_files dorn-tools libexec/dorn/DornGreeterSExe share/dorn/boards/tarn-single.dtb
    [ "$(dpkg-deb -I dorn_*.deb | grep -cE ' (postinst|prerm|postrm) +#!/bin/sh')" -eq 3 ] ||
        fail "scripts of the package are missing: $(dpkg-deb -I dorn_*.deb)"
    dpkg-deb -f dorn-dev_*.deb Description | grep -q dorn-conformance || fail "dorn-dev does not tell of dorn-conformance"
}

"$1"
