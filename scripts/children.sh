# For scripts that start others in the background: sourced, it makes `scratch`, a folder for this user alone, and
# ends all that `start` began, the last first, when the script ends, be it by Ctrl+C or a signal.
scratch=$(mktemp -d)
children=()

start() { # COMMAND [ARGUMENT...]
  "$@" &
  children+=($!)
}

# Waits for the last child and ends with its status.
end_with_last() {
  local status=0
  wait "${children[-1]}" || status=$?
  unset 'children[-1]'
  exit "$status"
}

end_children() {
  trap '' HUP INT TERM
  local i
  for ((i = ${#children[@]} - 1; i >= 0; i--)); do
    kill "${children[i]}" 2>/dev/null && wait "${children[i]}" 2>/dev/null || true
  done
  rm -rf "$scratch"
}

trap end_children EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM
