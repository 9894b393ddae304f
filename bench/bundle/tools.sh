cd "$1" || exit 1
tar c files | gzip -9 > theirs.tar.gz
