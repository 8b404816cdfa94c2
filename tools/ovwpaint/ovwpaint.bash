# Completion of ovwpaint for bash. Options and names come from the program itself.
_ovwpaint() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} program=${COMP_WORDS[0]}
    local commands="draw presets gallery convert info fill smooth settings pack unpack unzip"
    local command=() words=""
    COMPREPLY=()
    if ((COMP_CWORD > 1)); then
        command=("${COMP_WORDS[1]}")
        [[ ${command[0]} == settings ]] && ((COMP_CWORD > 2)) && command+=("${COMP_WORDS[2]}")
    fi
    case $previous in
        --depth) words="1 2 8 16 24 32" ;;
        --rotate) words="90 180 270" ;;
        --preset | --json) words=$("$program" presets 2>/dev/null | awk '{print $1}') ;;
        --method) words="high low near-factor nearest half quarter eighth double fourfold half-all quarter-all
            eighth-all double-all fourfold-all" ;;
        --mono) words="edges even" ;;
        --type) words="text int16 uint16 int32 uint32 float double path rect length data uint8 int64 uint64 point size
            pointf sizef rectf pointd sized rectd colour number" ;;
        settings) words="list get set" ;;
    esac
    if [[ -z $words ]]; then
        if ((COMP_CWORD == 1)); then
            words="$commands --help --version"
        elif [[ $current == -* ]]; then
            words=$("$program" "${command[@]}" --help 2>/dev/null | grep -oE -- '^ +(-[a-z], ?)?--[a-z-]+(,--[a-z-]+)*' |
                grep -oE -- '--[a-z-]+')
        fi
    fi
    if [[ -n $words ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    else
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        compopt -o filenames 2>/dev/null
    fi
}
complete -F _ovwpaint ovwpaint
