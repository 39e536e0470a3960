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
        libexec/dorn/DornClimateSExe share/dorn/boards/tarn-single.dtb; do
        [ -f "$prefix/$file" ] || fail "$file is not installed"
    done
    [ "$("$prefix/bin/dorn" --version)" = "dorn $(sed -n 's/^Version: //p' "$prefix/lib/pkgconfig/dorn.pc")" ]
}

NamesNoPlaceOfTheMachine() {
    local place
    for place in "$SOURCES" "$build" "$first"; do
        if grep -rlF "$place" "$prefix"; then
            fail "these name $place"
        fi
    done
}

HeadersNeedNothingElse() {
    empty_folder headers
    local part header spelled
    for part in library host testkit; do
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
    project 'REQUIRED COMPONENTS dorn testkit' 'add_library(inC OBJECT all.c)
        target_link_libraries(inC PRIVATE dorn::dorn)
        set_target_properties(inC PROPERTIES C_STANDARD 11 C_STANDARD_REQUIRED ON C_EXTENSIONS OFF)
        find_package(GTest REQUIRED)
        add_library(inCpp OBJECT all.cpp)
        target_link_libraries(inCpp PRIVATE dorn::testkit GTest::gtest)'
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

"$1"
