cd "$1" || exit 1
gzip -dk theirs.tar.gz
tar x -C out --strip-components=1 -f theirs.tar
