#!/bin/bash
# Runs the bash completion of qx25 as bash would, with COMP_WORDS set, and
# compares what it offers.
set -uo pipefail
completion=$1
tool_dir=$2

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$scratch/config"
touch "$scratch/config/link_config_0002.cfg" "$scratch/config/link_config_0017.cfg" \
    "$scratch/config/link_config_0002.cfg.BAK" "$scratch/config/notes"
export X25CONFIGFILES=$scratch PATH=$tool_dir:$PATH
# shellcheck source=/dev/null
source "$completion"

failures=0
# expect "WORDS OF THE LINE" "offered words, sorted, one blank apart"; the
# last word of the line is the one being completed.
expect() {
    read -r -a COMP_WORDS <<< "$1"
    [[ $1 == *" " ]] && COMP_WORDS+=("")
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    COMPREPLY=()
    _qx25
    local offered
    offered=$(printf '%s\n' "${COMPREPLY[@]}" | sed '/^$/d' | sort | tr '\n' ' ' | sed 's/ $//')
    if [ "$offered" != "$2" ]; then
        echo "FAIL: '$1' offers '$offered', expected '$2'"
        failures=$((failures + 1))
    fi
}

all_commands=$(qx25 --help | sed -n '/^Commands:/,/^$/p' | awk 'NF > 1 {print $1}' | sort | tr '\n' ' ')
expect "qx25 " "$(printf '%s\n' --help --version $all_commands | sort | tr '\n' ' ' | sed 's/ $//')"
expect "qx25 li" "links"
expect "qx25 i" "ident import inventory"
expect "qx25 --v" "--version"
expect "qx25 show " "17 2 link_config_0002.cfg link_config_0017.cfg"
expect "qx25 check 2 " "17 2 link_config_0002.cfg link_config_0017.cfg"
expect "qx25 pvcs 1" "17"
expect "qx25 pvcs 2 " ""
expect "qx25 addr --" "--check --help"
expect "qx25 links --" "--help --json"
expect "qx25 pvcs --json " "17 2"
expect "qx25 set --" "--dry-run --help"
expect "qx25 set --dry-run " "17 2"
expect "qx25 set --dry-run 2 w" "wan wan1 wan2 wan3 wan4 wan5"
expect "qx25 set -- 2 l" "lapb lapb1 lapb2 lapb3 lapb4 lapb5 link llc2"
expect "qx25 set 2 lapb --" ""
expect "qx25 template " "get put save show"
expect "qx25 template save " "17 2"
expect "qx25 template put 2 l" "lapb llc2"
expect "qx25 template put 2 x25 " ""
expect "qx25 import --" "--dry-run --help"

# No link files: no numbers are offered.
rm "$scratch"/config/link_config_*
expect "qx25 show " ""

if [ "$failures" -ne 0 ]; then
    echo "$failures completions differ"
    exit 1
fi
echo "completion offers commands, options, links, sections and layers"
