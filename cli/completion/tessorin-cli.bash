# SPDX-License-Identifier: GPL-3.0-or-later
# bash completion for tessorin-cli: commands, their options, and folders and files of the types
# the tool reads.

_tessorin_cli_media() {
    local cur=$1 f ext
    local types=" jpg jpeg jpe tif tiff dng png webp heic heif hif avif cr3 mov mp4 m4v qt "
    COMPREPLY=()
    while IFS= read -r f; do
        if [[ -d $f ]]; then
            COMPREPLY+=("$f/")
        else
            ext=${f##*.}
            [[ $f == *.* && $types == *" ${ext,,} "* ]] && COMPREPLY+=("$f")
        fi
    done < <(compgen -f -- "$cur")
    compopt -o filenames -o nospace 2> /dev/null
    return 0
}

_tessorin_cli() {
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}
    local cmd="" i
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
            -*) ;;
            *) cmd=${COMP_WORDS[i]}; break ;;
        esac
    done
    COMPREPLY=()
    if [[ -z $cmd ]]; then
        if [[ $cur == -* ]]; then
            COMPREPLY=($(compgen -W "--no-human -h --help --version --credits" -- "$cur"))
        else
            COMPREPLY=($(compgen -W "props info summary tags location place edit resources" -- "$cur"))
        fi
        return 0
    fi

    case $prev in
        -@) COMPREPLY=($(compgen -f -- "$cur")); compopt -o filenames 2> /dev/null; return 0 ;;
        -o | --extract) COMPREPLY=($(compgen -d -- "$cur")); compopt -o filenames 2> /dev/null; return 0 ;;
        --ext) COMPREPLY=($(compgen -W "jpg jpeg tif tiff dng png webp heic heif avif cr3 mov mp4 m4v" -- "$cur")); return 0 ;;
        --orientation) COMPREPLY=($(compgen -W "1 2 3 4 5 6 7 8" -- "$cur")); return 0 ;;
        --template | --geotag) COMPREPLY=($(compgen -f -- "$cur")); compopt -o filenames 2> /dev/null; return 0 ;;
        --strip) COMPREPLY=($(compgen -W "private location dates motion" -- "$cur")); return 0 ;;
        --date | --digitized-date | --location | --set | --remove | --search | --shift | --zone | --geotag-offset | --max-gap) return 0 ;;
    esac

    local files="-r --recursive -@ --ext --" json="-j --json --pretty" opts
    case $cmd in
        props) opts="--pretty $files" ;;
        info | summary) opts="$json $files" ;;
        tags) opts="--raw $json $files" ;;
        resources) opts="--extract $json $files" ;;
        location) opts="$json --" ;;
        place) opts="--search $json --" ;;
        resources) opts="--extract $files" ;;
        edit) opts="--date --digitized-date --location --orientation --set --remove --no-location
                    --no-date --no-tags -o --in-place --keep-original --render --template --shift --zone
                    --keep-instant --geotag --geotag-offset --max-gap --strip --sidecar $files" ;;
        *) return 0 ;;
    esac
    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "-h --help $opts" -- "$cur"))
        return 0
    fi
    case $cmd in
        location | place) return 0 ;;
    esac
    _tessorin_cli_media "$cur"
}

complete -F _tessorin_cli tessorin-cli
