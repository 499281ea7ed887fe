# The reports of the sample company with the selections that show most of each; sourced by the scripts beside it.

# each_report COMMAND…: runs the command with every list and its options behind.
each_report() {
    local list values
    values=$(dirname "${BASH_SOURCE[0]}")/werte
    for list in Umsatz MitUeber Firma; do
        "$@" "$list"
    done
    for list in GemeinK NeutralA; do
        "$@" "$list" --jahr 2024 --monat 3
    done
    for list in MaKost MaZeit MaStKost MaStZeit KalkKo MatUeber; do
        "$@" "$list"
    done
    for list in Bilanz BsEMa BsEStd BsEGes KalkW WasWenn UmsatzHW; do
        "$@" "$list" --werte "$values/$list.csv"
    done
}
