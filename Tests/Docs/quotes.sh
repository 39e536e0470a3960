#!/usr/bin/env bash
# Checks that every quoted snippet stands in the file that it names, and that C++ is shown only where it is quoted.
# Usage: quotes.sh ROOT
set -euo pipefail
cd "$1"
failures=0
quotes=0
# Its blocks stand in what `dorn new service` makes; Tests/Install holds them against that.
made=Docs/new-service.md

complain() {
    echo "$1" >&2
    failures=$((failures + 1))
}

# Holds a quoted block of document $1 against file $2.
check_block() {
    local document="$1" file="$2" block="$3"
    quotes=$((quotes + 1))
    if [ ! -f "$file" ]; then
        complain "$document quotes $file, which does not exist"
    elif [[ "$(<"$file")"$'\n' != *"$block"* ]]; then
        complain "$document quotes what does not stand in $file:"$'\n'"$block"
    fi
}

check_document() {
    local document="$1" line file="" source="" block="" inside=0 number=0
    while IFS= read -r line || [ -n "$line" ]; do
        number=$((number + 1))
        if [[ "$line" =~ ^'<!-- quote: '(.*)' -->'$ ]]; then
            file="${BASH_REMATCH[1]}" source="$file"
        elif [[ "$document" == "$made" && "$line" =~ ^'<!-- made: '(.*)' -->'$ ]]; then
            source="${BASH_REMATCH[1]}"
        elif [[ "$line" == '```'* && "$inside" -eq 1 ]]; then
            [ -z "$file" ] || check_block "$document" "$file" "$block"
            file="" source="" block="" inside=0
        elif [[ "$line" == '```'* ]]; then
            [[ "$line" != '```cpp'* || -n "$source" ]] || complain "$document:$number: C++ that is quoted from nowhere"
            inside=1
        elif [ "$inside" -eq 1 ]; then
            block+="$line"$'\n'
        fi
    done <"$document"
    [ -z "$file" ] || complain "$document: the quote of $file has no block"
}

while IFS= read -r document; do
    check_document "$document"
done < <(find README.md CHANGELOG.md Docs -name '*.md' | sort)

[ "$quotes" -gt 0 ] || complain "no quote was found: the check is broken"
echo "$quotes quotes checked"
exit "$((failures > 0))"
