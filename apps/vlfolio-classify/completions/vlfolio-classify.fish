# Completion for fish.

function __vlfolio_classify_locales
    set -l command (commandline -opc)
    $command[1] --locales 2>/dev/null
end

complete -c vlfolio-classify -f -a '(__fish_complete_directories)'
complete -c vlfolio-classify -l open -d 'Open the report even without a desktop or with markup in it.'
complete -c vlfolio-classify -l no-open -d 'Do not open the report.'
complete -c vlfolio-classify -l output -r -F -d 'Write the report to this file, or into this directory, instead of into DIRECTORY.'
complete -c vlfolio-classify -l page -r -F -d 'Write no report; write this HTML page to look at, with the reason for each type, a chart and a search.'
complete -c vlfolio-classify -l list -d 'Write no report; print a line for each folder.'
complete -c vlfolio-classify -l json -d 'Write no report; print a JSON object for each folder, one per line.'
complete -c vlfolio-classify -l summary -d 'Write no report; print how many folders of each type there are.'
complete -c vlfolio-classify -l why -d 'With --list: end each line with the reason for the type.'
complete -c vlfolio-classify -l type -x -a '(__fish_append , Unknown Root Year Month Day Event ProjectFolder)' -d 'With --list, --json or --summary: only folders of these types (Unknown, Root, Year, Month, Day, Event or ProjectFolder, in any letter case, separated by commas). May be repeated.'
complete -c vlfolio-classify -l exclude -x -d 'Leave out folders of such names and everything below them, for example @eaDir. May be repeated.'
complete -c vlfolio-classify -l explain -d 'Take the arguments as folder names and say what each one is by itself. Touches no file.'
complete -c vlfolio-classify -l locale -x -a '(__vlfolio_classify_locales)' -d 'Read dates and names of days and months in this language, for example de_DE.'
complete -c vlfolio-classify -l locales -d 'Print the names that --locale takes.'
complete -c vlfolio-classify -s h -l help -d 'Show this help.'
complete -c vlfolio-classify -s v -l version -d 'Show the version.'
