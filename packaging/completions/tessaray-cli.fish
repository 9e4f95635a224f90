# Fish completion for tessaray-cli: commands, the options of each, presets, devices and files.

set -l commands probe convert plan extract join split remux remove send watch play presets prefs tools help
set -l writing convert extract join split remux remove send

function __tessaray_cli_presets # tracks|settings|[a-z]+
    tessaray-cli presets list 2>/dev/null | string replace -rf "^$argv[1]: " ''
end

function __tessaray_cli_devices
    printf '%s\n' General 'iPod (All non-Touch)' 'iPhone (3 and Earlier)' 'iPod Touch (3 and Earlier)' \
        'iPad (2 and Earlier)' 'Apple TV 2' 'iPhone 4' 'iPod Touch (4 and Later)' 'Apple TV (3 and Later)' \
        'iPad (3 and Later)' 'iPad Mini (All)' 'iPhone (4S and Later)' PS3 Xbox MKV AVI
end

function __tessaray_cli_keys
    tessaray-cli prefs list 2>/dev/null | string replace -r '[ =].*' ''
end

complete -c tessaray-cli -f
complete -c tessaray-cli -n "not __fish_seen_subcommand_from $commands" -a "$commands"
complete -c tessaray-cli -n "__fish_seen_subcommand_from help" -a "$commands"
complete -c tessaray-cli -l help -d 'show help, with an example'
complete -c tessaray-cli -l version -d 'show the version'
complete -c tessaray-cli -l json -d 'print one JSON object per line'
complete -c tessaray-cli -l quiet -d 'show no progress'
complete -c tessaray-cli -l save-dir -x -a '(__fish_complete_directories)' -d 'write results into this folder'
complete -c tessaray-cli -l keep-logs -d 'keep logs and temporary files'
complete -c tessaray-cli -l no-keep-logs -d 'remove logs and temporary files'
complete -c tessaray-cli -l nice -d 'run tools at low priority'
complete -c tessaray-cli -l newer-codecs -d 'open films with newer codecs too'
complete -c tessaray-cli -l defaults -r -F -d 'use the settings in this file'

complete -c tessaray-cli -n '__fish_seen_subcommand_from probe convert plan extract join split remux remove send play' -F
complete -c tessaray-cli -n '__fish_seen_subcommand_from watch' -a '(__fish_complete_directories)'
complete -c tessaray-cli -n '__fish_seen_subcommand_from probe convert plan extract join split remux' \
    -l list -r -F -d 'take the files that are named in this one'
complete -c tessaray-cli -n "__fish_seen_subcommand_from $writing plan" -l force -d 'replace an existing output'
complete -c tessaray-cli -n "__fish_seen_subcommand_from $writing plan watch" \
    -l verify -d 'compare copies with their sources, bit for bit'
complete -c tessaray-cli -n '__fish_seen_subcommand_from watch' \
    -l existing -d 'convert films too that are there already'
complete -c tessaray-cli -n '__fish_seen_subcommand_from watch' \
    -l status -d 'show in one line how the folder is doing'
complete -c tessaray-cli -n '__fish_seen_subcommand_from plan' -l commands -d 'print a line for a shell per film'
complete -c tessaray-cli -n "__fish_seen_subcommand_from $writing" -l dry-run -d 'print the commands, run none'
complete -c tessaray-cli -n "__fish_seen_subcommand_from $writing watch" \
    -l print -x -a 'outputs outputs0' -d 'print the paths of finished files only'
complete -c tessaray-cli -n "__fish_seen_subcommand_from $writing watch" \
    -l exec -x -a '(__fish_complete_command)' -d 'run this program for each finished file'
complete -c tessaray-cli -n '__fish_seen_subcommand_from convert plan extract remove play' \
    -l tracks -x -d 'stream indexes, separated by commas'

set -l convert '__fish_seen_subcommand_from convert plan'
complete -c tessaray-cli -n $convert -l device -x -a '(__tessaray_cli_devices)' -d 'the device to convert for'
complete -c tessaray-cli -n $convert -l auto -x -a 'quality speed' -d 'copy what the device plays, re-encode the rest'
complete -c tessaray-cli -n $convert -l output -r -F -d 'name the result of a single film'
complete -c tessaray-cli -n $convert -l recursive -d 'take the films in folders too'
complete -c tessaray-cli -n $convert -l skip-existing -d 'pass over films whose result is there'
complete -c tessaray-cli -n $convert -l kind -x -a 'mp4 mkv avi' -d 'the kind of file'
complete -c tessaray-cli -n $convert -l video -x -a 'passthru 1pass 2pass' -d 'copy the video, or re-encode it'
complete -c tessaray-cli -n $convert -l video-bitrate -x -d 'video bit rate in kb/s'
complete -c tessaray-cli -n $convert -l width -x -d 'width in pixels'
complete -c tessaray-cli -n $convert -l audio -x -d 'settings of an audio track'
complete -c tessaray-cli -n $convert -l subtitles -x -a 'mux burn' -d 'as tracks, or in the picture'
complete -c tessaray-cli -n $convert -l add -r -F -d 'a file to take in as a further track'
complete -c tessaray-cli -n '__fish_seen_subcommand_from convert plan watch' \
    -l track-preset -x -a '(__tessaray_cli_presets tracks)' -d 'let this preset choose the tracks'
complete -c tessaray-cli -n '__fish_seen_subcommand_from convert plan watch' \
    -l settings-preset -x -a '(__tessaray_cli_presets settings)' -d 'let this preset choose the settings'

set -l split '__fish_seen_subcommand_from split'
complete -c tessaray-cli -n $split -l time -x -d 'take this stretch: START-END'
complete -c tessaray-cli -n $split -l size -x -d 'parts of at most so many megabytes'
complete -c tessaray-cli -n $split -l duration -x -d 'parts of this length: HH:MM:SS'

set -l verbs list show add set rename remove export import
set -l presets '__fish_seen_subcommand_from presets'
complete -c tessaray-cli -n "$presets; and not __fish_seen_subcommand_from $verbs" -a "$verbs"
complete -c tessaray-cli -n "$presets; and __fish_seen_subcommand_from add" -a 'tracks settings'
complete -c tessaray-cli -n "$presets; and __fish_seen_subcommand_from show set rename remove" \
    -a "(__tessaray_cli_presets '[a-z]+')"
complete -c tessaray-cli -n "$presets; and __fish_seen_subcommand_from export import" -F
complete -c tessaray-cli -n $presets -l for -x -a '(__tessaray_cli_devices)' -d 'make it ready for this device'

set -l prefs '__fish_seen_subcommand_from prefs'
complete -c tessaray-cli -n "$prefs; and not __fish_seen_subcommand_from list get set" -a 'list get set'
complete -c tessaray-cli -n "$prefs; and __fish_seen_subcommand_from get set" -a '(__tessaray_cli_keys)'
complete -c tessaray-cli -n "$prefs; and __fish_seen_subcommand_from set" -F

complete -c tessaray-cli -n '__fish_seen_subcommand_from tools' -l report -d 'show what a report of a bug needs'
