# Completion of the command vantra for bash: verbs, options, and what their values may be.
# Sourced by bash-completion, or by hand: . vantra.bash

# The options of a verb, given as "VERB" or "GROUP VERB"; nothing for a verb that there is not.
_vantra_options() {
    local reporting='--help --json --quiet'
    local connection='--insecure --cacert --timeout --proxy'
    local login='--user --password-file'
    local request="--header --header-file $connection $login --log"
    local ftp="$connection $login --tls --cwd --log"
    local mail="--server --tls $login --timeout --log"
    local s3="--endpoint --access-key --secret-key-file --retries $connection --log"
    case $1 in
    get) echo "--output --include --range $request" ;;
    get-all) echo "--directory --parallel $request" ;;
    put | post) echo "--file --content-type --output --include $request" ;;
    proxy) ;;
    'ftp ls' | 'ftp stat' | 'ftp rmdir' | 'ftp rm') echo "$ftp" ;;
    'ftp get') echo "--output --range $ftp" ;;
    'ftp put' | 'ftp mkdir' | 'ftp mv') echo "--create-dirs $ftp" ;;
    'ftp rmtree') echo "--yes $ftp" ;;
    'mail send') echo "--from --to --subject --text --html --attach $mail" ;;
    'mail test') echo "$mail" ;;
    's3 ls') echo "--prefix --delimiter --page-size $s3" ;;
    's3 get') echo "--output --range $s3" ;;
    's3 put') echo "--file --content-type $s3" ;;
    's3 head' | 's3 cp' | 's3 rm' | 's3 exists') echo "$s3" ;;
    *) return ;;
    esac
    echo "$reporting"
}

# The verbs of the program, or of the group that is given.
_vantra_verbs() {
    case $1 in
    '') echo 'get get-all put post proxy ftp mail s3' ;;
    ftp) echo 'ls stat get put mkdir rmdir rm mv rmtree' ;;
    mail) echo 'send test' ;;
    s3) echo 'ls get put head cp rm exists' ;;
    esac
}

# The values that an option has; files for those that name one, nothing where only the user knows.
# Fails for an option that has no value.
_vantra_complete_value() { # VERB OPTION WORD
    case $2 in
    -o | --output | -f | --file | --cacert | --password-file | --secret-key-file | --header-file | --log | --text | --html | --attach)
        mapfile -t COMPREPLY < <(compgen -f -- "$3")
        compopt -o filenames 2>/dev/null
        ;;
    -d | --directory)
        mapfile -t COMPREPLY < <(compgen -d -- "$3")
        compopt -o filenames 2>/dev/null
        ;;
    --tls)
        local kinds='none explicit implicit'
        [[ $1 == mail* ]] && kinds='none ssl starttls'
        mapfile -t COMPREPLY < <(compgen -W "$kinds" -- "$3")
        ;;
    --cwd) mapfile -t COMPREPLY < <(compgen -W 'steps direct none' -- "$3") ;;
    --proxy) mapfile -t COMPREPLY < <(compgen -W 'system none http://' -- "$3") ;;
    --range | --parallel | --header | --timeout | --user | --content-type | --server | --from | --to | --subject | \
        --endpoint | --access-key | --retries | --prefix | --delimiter | --page-size) ;;
    *) return 1 ;;
    esac
    return 0
}

# The verb on the line up to the cursor, with its group; just the group, or nothing, while there is none.
_vantra_find_verb() {
    local verb=${COMP_WORDS[1]}
    ((COMP_CWORD > 1)) || return
    if [[ $verb == @(ftp|mail|s3) ]]; then
        ((COMP_CWORD > 2)) && verb+=" ${COMP_WORDS[2]}"
    fi
    echo "$verb"
}

_vantra() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local verb choices
    COMPREPLY=()
    # By default bash breaks words at "=": --tls=exp are three of them.
    if [[ $word == '=' ]]; then
        word=''
    elif [[ $previous == '=' ]] && ((COMP_CWORD > 2)); then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    verb=$(_vantra_find_verb)
    if [[ -z $verb || $verb == @(ftp|mail|s3) ]]; then
        choices=$(_vantra_verbs "$verb")
        [[ -z $verb ]] && choices+=' --help --version' || choices+=' --help'
        mapfile -t COMPREPLY < <(compgen -W "$choices" -- "$word")
    elif _vantra_complete_value "$verb" "$previous" "$word"; then
        return
    elif [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_vantra_options "$verb")" -- "$word")
    elif [[ $verb == 'ftp put' ]]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        compopt -o filenames 2>/dev/null
    fi
}

complete -F _vantra vantra
