# RESOURCES/fonts: our fontconfig file and one font that is surely there, taken from what is installed.
# Run at build time with RESOURCES and FONTS (where fonts.conf is kept).
cmake_minimum_required(VERSION 3.25)
file(MAKE_DIRECTORY "${RESOURCES}/fonts")
file(COPY_FILE "${FONTS}/fonts.conf" "${RESOURCES}/fonts/fonts.conf" ONLY_IF_DIFFERENT)
find_file(font NAMES DejaVuSans.ttf NO_CACHE NO_DEFAULT_PATH
  PATHS /usr/share/fonts/truetype/dejavu /usr/share/fonts/dejavu-sans-fonts /usr/share/fonts/dejavu
        /usr/share/fonts/TTF /usr/local/share/fonts /opt/homebrew/share/fonts /Library/Fonts)
if(font)
  file(COPY_FILE "${font}" "${RESOURCES}/fonts/DejaVuSans.ttf" ONLY_IF_DIFFERENT)
endif()
