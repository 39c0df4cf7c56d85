# Completion of marlowen-cli for bash. The options come from the program's own help.
_marlowen_cli()
{
    local current=${COMP_WORDS[COMP_CWORD]} command=${COMP_WORDS[1]-}
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W 'convert info run thumbnail --help --version' -- "$current")
    elif [[ $current == -* ]]; then
        local options
        case $command in
        convert) options=$(marlowen-cli convert --help 2>/dev/null | grep -oE -- '--[a-z][a-z-]*') ;;
        info) options=--json ;;
        thumbnail) options=--size ;;
        *) options= ;;
        esac
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current" | sort -u)
    else
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
} && complete -F _marlowen_cli marlowen-cli
