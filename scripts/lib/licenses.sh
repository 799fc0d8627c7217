# shellcheck shell=bash disable=SC2034 # the names are for the script that sources this
# What the package carries of others' license texts and the toolchain root does not have. Apart from
# the recipe: no compiler sees these files, so a change here needs no new root.

# name, SHA-256; from the same place as adb itself
adb_notice_files=(
    "NOTICE.txt df5fb9fbfa6764fdf6b4fe484f4884537b9bd6ddc3e6a51590a313835c310bed"
    "source.properties 16f09ff68887d7c5eebd7c9642101ba2ec691e40cc78ccbfc0bb032f50ab99b2"
)
