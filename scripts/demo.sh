#!/usr/bin/env bash
# Installs what is missing, builds, and shows plcdb at work on the bundled sample
# database: its catalog, and the standalone host calling the plug-in's external
# functions as the drawing program's Lisp does.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
bash scripts/build.sh

plcdb=build/plcdb
show() {
    echo "\$ plcdb $*"
    "$plcdb" "$@" || echo "(exit status $?)"
    echo
}
sample=build/sample/ZEL_PLC.MDB
show --help
show --db "$sample" list
echo "\$ plcdb --db $sample export | head -n 40"
"$plcdb" --db "$sample" export | head -n 40 || true
echo "..."
echo
# The selection as a script gets it: the list the dialog gives for these choices.
show --db "$sample" select --manufacturer "Norvale Controls" --series NV-100 \
    --type "Digital Input" --catalog NV-1108 --style 3 --orient H --scale 2.0
# The terminal block list the editor reads, and a block found by the name a module stores.
echo "\$ plcdb blocks | head -c 600"
"$plcdb" blocks | head -c 600 || true
echo "..."
echo
show blocks --find 'HP?DI'
# A new module, made on a copy of the sample as the editor's New Module does, with the
# defaults of the default files beside plcdb.
copy=build/demo-new.mdb
cp "$sample" "$copy"
show --db "$copy" new --manufacturer "Norvale Controls" --series NV-100 \
    --type "Digital Input" --catalog NV-1104D --terminals 3 --description "Four inputs" \
    --box A1=2.5in --box A2=4in
# The same catalog again is refused, and the copy stays as it was.
show --db "$copy" new --manufacturer "Norvale Controls" --series NV-100 \
    --type "Digital Input" --catalog NV-1104D
rm -f "$copy" "$copy-wal" "$copy-shm"
show call '(zel_delay 1)'
# An integer where the style text belongs: the selection answers nil at once.
show call "(zel_mbsel '(0 \"\" nil 5 \"V\" 1.0 nil \"\" nil))"
show call '(no_such_function)'
# The database editor needs a display; this is how to open it on the sample.
echo "To edit the sample catalog: $plcdb --db $sample edit"
