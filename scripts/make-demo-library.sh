#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Makes the demo library in BUILD/demo-library from the demo album: a live photo (a photo and a
# movie of one name), a favourite, an edited item whose original is kept, and an album folder
# inside a folder. Its index and trash live in BUILD/demo-data, so the user's own library index
# is never touched. Prints the environment to run the app on it.
set -euo pipefail
build=${1:-build}
demo="$build/demo"
lib="$build/demo-library"
data="$build/demo-data"
cli="$build/bin/tessorin-cli"
shopt -s nullglob
photos=("$demo"/*.jpg "$demo"/*.heic "$demo"/*.png)
movies=("$demo"/*.mov "$demo"/*.mp4)
if [ ${#photos[@]} -lt 3 ] || [ ${#movies[@]} -lt 1 ]; then
  echo "The demo album in $demo needs three photos and a movie: build the 'demo' target first." >&2
  exit 1
fi
rm -rf "$lib" "$data"
mkdir -p "$lib/Trips/Lisbon" "$lib/Family" "$data"
export XDG_DATA_HOME="$data" TESSORIN_LIBRARY="$lib"

# The live photo: the first photo with the first movie under the same name.
ext="${photos[0]##*.}"
cp "${photos[0]}" "$lib/IMG_0001.$ext"
cp "${movies[0]}" "$lib/IMG_0001.${movies[0]##*.}"
for movie in "${movies[@]:1}"; do cp "$movie" "$lib/"; done
cp "${photos[1]}" "$lib/Trips/Lisbon/"
cp "${photos[2]}" "$lib/Family/"
for photo in "${photos[@]:3}"; do cp "$photo" "$lib/"; done

"$cli" library scan > /dev/null
id_of() { "$cli" library list | awk -v name="$1" '$4 == name { print $1; exit }'; }
favourite=$(id_of "$(basename "${photos[2]}")")
edited=$(id_of "$(basename "${photos[1]}")")
[ -n "$favourite" ] && "$cli" library favorite "$favourite" > /dev/null
[ -n "$edited" ] && "$cli" edit --date "2024:06:13 18:30:00" --library modify "$edited" > /dev/null
echo "XDG_DATA_HOME=$data TESSORIN_LIBRARY=$lib"
