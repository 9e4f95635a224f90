# Bash completion for tessaray-cli: commands, the options of each, presets, devices and files.
# shellcheck shell=bash

_tessaray_cli_options() {
    local global="--help --version --json --quiet --save-dir --keep-logs --no-keep-logs --nice --defaults"
    global+=" --newer-codecs"
    local files="--force --verify --dry-run --print --exec"
    local choices="--tracks --device --kind --video --video-bitrate --width --audio --subtitles --add"
    choices+=" --track-preset --settings-preset --auto --output --recursive --skip-existing --list"
    case $1 in
    probe) echo "$global --list" ;;
    convert)
        echo "$global $files $choices"
        ;;
    plan)
        echo "$global $choices --force --verify --commands"
        ;;
    extract) echo "$global $files --list --tracks" ;;
    remove) echo "$global $files --tracks" ;;
    join | remux) echo "$global $files --list" ;;
    send) echo "$global $files" ;;
    split) echo "$global $files --list --time --size --duration" ;;
    watch) echo "$global --track-preset --settings-preset --existing --status --verify --print --exec" ;;
    play) echo "$global --tracks" ;;
    presets) echo "$global --for" ;;
    tools) echo "$global --report" ;;
    *) echo "$global" ;;
    esac
}

_tessaray_cli_presets() { # PROGRAM tracks|settings
    "$1" presets list 2>/dev/null | sed -n "s/^$2: //p"
}

_tessaray_cli_devices() {
    printf '%s\n' General "iPod (All non-Touch)" "iPhone (3 and Earlier)" "iPod Touch (3 and Earlier)" \
        "iPad (2 and Earlier)" "Apple TV 2" "iPhone 4" "iPod Touch (4 and Later)" "Apple TV (3 and Later)" \
        "iPad (3 and Later)" "iPad Mini (All)" "iPhone (4S and Later)" PS3 Xbox MKV AVI
}

# Lines that begin with what was typed, each as a word of the line.
_tessaray_cli_offer() {
    local line typed=$1 quote=""
    case $typed in
    \"* | \'*) quote=${typed:0:1} typed=${typed:1} ;;
    *) typed=${typed//\\/} ;;
    esac
    while IFS= read -r line; do
        [[ -n $line && $line == "$typed"* ]] || continue
        [[ -n $quote ]] || printf -v line '%q' "$line"
        COMPREPLY+=("$line")
    done
}

_tessaray_cli_files() { # TYPED [compgen's -d]
    local line
    while IFS= read -r line; do
        COMPREPLY+=("$line")
    done < <(compgen "${2:--f}" -- "$1")
    compopt -o filenames 2>/dev/null
}

# The values of an option; false when it takes none.
_tessaray_cli_value() { # PROGRAM OPTION TYPED
    case $2 in
    --save-dir) _tessaray_cli_files "$3" -d ;;
    --defaults | --add | --list) _tessaray_cli_files "$3" ;;
    --device | --for) _tessaray_cli_offer "$3" < <(_tessaray_cli_devices) ;;
    --print) _tessaray_cli_offer "$3" < <(printf '%s\n' outputs outputs0) ;;
    --exec) _tessaray_cli_offer "$3" < <(compgen -c -- "$3") ;;
    --kind) _tessaray_cli_offer "$3" < <(printf '%s\n' mp4 mkv avi) ;;
    --video) _tessaray_cli_offer "$3" < <(printf '%s\n' passthru 1pass 2pass) ;;
    --subtitles) _tessaray_cli_offer "$3" < <(printf '%s\n' mux burn) ;;
    --track-preset) _tessaray_cli_offer "$3" < <(_tessaray_cli_presets "$1" tracks) ;;
    --settings-preset) _tessaray_cli_offer "$3" < <(_tessaray_cli_presets "$1" settings) ;;
    --tracks | --video-bitrate | --width | --audio | --time | --size | --duration) ;;
    *) return 1 ;;
    esac
}

_tessaray_cli_argument() { # PROGRAM COMMAND FIRST-ARGUMENT COUNT TYPED
    case $2 in
    "")
        _tessaray_cli_offer "$5" < <(printf '%s\n' probe convert plan extract join split remux remove send watch play presets \
            prefs tools help)
        ;;
    tools) ;;
    help) [[ $4 != 0 ]] || _tessaray_cli_argument "$1" "" "" 0 "$5" ;;
    presets)
        case $4-$3 in
        0-) _tessaray_cli_offer "$5" < <(printf '%s\n' list show add set rename remove export import) ;;
        1-add) _tessaray_cli_offer "$5" < <(printf '%s\n' tracks settings) ;;
        1-show | 1-set | 1-rename | 1-remove)
            _tessaray_cli_offer "$5" < <(_tessaray_cli_presets "$1" '[a-z]*')
            ;;
        1-export | 1-import) _tessaray_cli_files "$5" ;;
        esac
        ;;
    prefs)
        case $4-$3 in
        0-) _tessaray_cli_offer "$5" < <(printf '%s\n' list get set) ;;
        1-get | 1-set) _tessaray_cli_offer "$5" < <("$1" prefs list 2>/dev/null | sed 's/[ =].*//') ;;
        2-set) _tessaray_cli_files "$5" ;;
        esac
        ;;
    *) _tessaray_cli_files "$5" ;;
    esac
}

_tessaray_cli() {
    local words=() typed option="" command="" first="" count=0 only_files="" i word
    # Bash divides "--device=PS3" at the "=".
    for ((i = 1; i <= COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        [[ $word != "=" || $i == "$COMP_CWORD" ]] || continue
        [[ $word != "=" ]] || word=""
        words+=("$word")
    done
    typed=${words[${#words[@]} - 1]}
    COMPREPLY=()
    for ((i = 0; i < ${#words[@]} - 1; i++)); do
        word=${words[i]}
        if [[ -n $option ]]; then
            option=""
        elif [[ -z $only_files && $word == -- ]]; then
            only_files=1
        elif [[ -z $only_files && $word == --* ]]; then
            case $word in
            --help | --version | --json | --quiet | --keep-logs | --no-keep-logs | --nice | --force | --verify | --dry-run | \
                --newer-codecs | --commands | --recursive | --skip-existing | --existing | --status | --report) ;;
            *) option=$word ;;
            esac
        elif [[ -z $command ]]; then
            command=$word
        else
            [[ $count != 0 ]] || first=$word
            count=$((count + 1))
        fi
    done
    if [[ -n $option ]]; then
        _tessaray_cli_value "${COMP_WORDS[0]}" "$option" "$typed"
    elif [[ -z $only_files && $typed == -* ]]; then
        _tessaray_cli_offer "$typed" < <(_tessaray_cli_options "$command" | tr ' ' '\n')
    else
        _tessaray_cli_argument "${COMP_WORDS[0]}" "$command" "$first" "$count" "$typed"
    fi
}

complete -F _tessaray_cli tessaray-cli
