#!/bin/sh
# Fails when a lower layer of the host includes a higher one. Layers, lowest
# first: the plain public types (cmpihost/*.h but the three below), text,
# repository, broker, providers, the facade (host/*, cmpihost/Host.h,
# CallScope.h, BagCheck.h), cli.
cd "$1/host" || exit 2
rank() {
  case "$1" in
    text/*) echo 1 ;;
    repository/*) echo 2 ;;
    broker/*) echo 3 ;;
    providers/*) echo 4 ;;
    cli/*) echo 6 ;;
    cmpihost/Host.h | cmpihost/CallScope.h | cmpihost/BagCheck.h) echo 5 ;;
    include/cmpihost/Host.h | include/cmpihost/CallScope.h | include/cmpihost/BagCheck.h) echo 5 ;;
    cmpihost/* | include/cmpihost/*) echo 0 ;;
    *) echo 5 ;;
  esac
}
found=0
for line in $(grep -rn '#include "' . --include='*.cpp' --include='*.h' | sed 's|^\./||; s/#include "\([^"]*\)"/\1/; s/[[:space:]]//g'); do
  file=${line%%:*}
  target=${line##*:}
  if [ "$(rank "$target")" -gt "$(rank "$file")" ]; then
    echo "upward include: $line"
    found=1
  fi
done
exit $found
