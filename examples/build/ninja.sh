#!/bin/sh
# Writes the rules for ninja for all scripts below a folder, whose code goes to another:
#
#     sh ninja.sh plant code > build.ninja
#     ninja -k 0
#
# With "-k 0" a script that fails stops no other one. Scripts that come or go need new rules.

cat <<'END'
rule compile
  command = yxst check --format=gcc --quiet $in && yxstcmp $in $out
  description = $in

END

# A blank, a colon and a dollar in a name stand after a dollar.
escaped() { printf '%s' "$1" | sed 's/[ :$]/$&/g'; }

compiler=$(escaped "$(command -v yxstcmp)")
find "$1" -name '*.st' | sort | while IFS= read -r script; do
    code=$2/${script#"$1"/}
    echo "build $(escaped "${code%.st}.yx"): compile $(escaped "$script") | $compiler"
done
