# What draws the letters of texts: GDI on Windows, FreeType and fontconfig elsewhere, and nothing where these are
# lacking or Q_MUR_TEXT is off. Sets
#   Q_MUR_TEXT_RASTERISER         gdi, freetype or none, as in src/blit/text_<rasteriser>.cpp
#   Q_MUR_TEXT_INCLUDES, Q_MUR_TEXT_LIBRARIES
#                                 what the library is compiled with and linked with for it
#   Q_MUR_TEXT_INSTALLED_LIBRARIES, Q_MUR_TEXT_PC_LIBRARIES
#                                 what programs link for the installed static library, as told to CMake and pkg-config

set(Q_MUR_TEXT_RASTERISER none)
set(Q_MUR_TEXT_INCLUDES "")
set(Q_MUR_TEXT_LIBRARIES "")
set(Q_MUR_TEXT_INSTALLED_LIBRARIES "")
set(Q_MUR_TEXT_PC_LIBRARIES "")

# Whether FreeType and fontconfig can be linked: what is installed may be for another architecture.
function(q_mur_find_freetype)
  find_package(Freetype QUIET)
  find_package(Fontconfig QUIET)
  set(includes ${FREETYPE_INCLUDE_DIRS} ${Fontconfig_INCLUDE_DIRS})
  set(libraries ${FREETYPE_LIBRARIES} ${Fontconfig_LIBRARIES})
  if(FREETYPE_FOUND AND Fontconfig_FOUND)
    include(CheckCXXSourceCompiles)
    set(CMAKE_REQUIRED_INCLUDES ${includes})
    set(CMAKE_REQUIRED_LIBRARIES ${libraries})
    set(CMAKE_REQUIRED_QUIET ON)
    check_cxx_source_compiles("
      #include <fontconfig/fontconfig.h>
      #include <ft2build.h>
      #include FT_FREETYPE_H
      int main() {
        FT_Library library;
        return FT_Init_FreeType(&library) + FcGetVersion();
      }" Q_MUR_FREETYPE_LINKS)
  endif()
  # The last result is remembered, also when the packages have gone since.
  if(NOT (FREETYPE_FOUND AND Fontconfig_FOUND AND Q_MUR_FREETYPE_LINKS))
    # Packages may have come when the build is configured again.
    unset(Q_MUR_FREETYPE_LINKS CACHE)
    q_mur_leave_out("letters in iTextOut" "FreeType and fontconfig for this architecture"
      "libfreetype-dev, libfontconfig-dev" Q_MUR_TEXT)
    return()
  endif()
  set(Q_MUR_TEXT_RASTERISER freetype PARENT_SCOPE)
  set(Q_MUR_TEXT_INCLUDES ${includes} PARENT_SCOPE)
  set(Q_MUR_TEXT_LIBRARIES ${libraries} PARENT_SCOPE)
  # One argument, so that nothing comes between: programs that draw no text do not need the libraries.
  set(libraries "-Wl,--push-state,--as-needed,-lfreetype,-lfontconfig,--pop-state")
  set(Q_MUR_TEXT_PC_LIBRARIES "${libraries}" PARENT_SCOPE)
  set(Q_MUR_TEXT_INSTALLED_LIBRARIES "${libraries}" PARENT_SCOPE)
endfunction()

if(NOT Q_MUR_TEXT)
  message(STATUS "Without letters in iTextOut: Q_MUR_TEXT is off")
elseif(WIN32)
  set(Q_MUR_TEXT_RASTERISER gdi)
  set(Q_MUR_TEXT_LIBRARIES gdi32 user32)
  set(Q_MUR_TEXT_INSTALLED_LIBRARIES ${Q_MUR_TEXT_LIBRARIES})
  set(Q_MUR_TEXT_PC_LIBRARIES "-lgdi32 -luser32")
else()
  q_mur_find_freetype()
endif()
