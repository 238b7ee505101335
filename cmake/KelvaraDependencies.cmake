# Every library the project links, found once; docs/architecture.md says why each is here.

find_package(PkgConfig REQUIRED)
find_package(ICU REQUIRED COMPONENTS uc i18n)
find_package(JPEG REQUIRED)
find_package(PNG REQUIRED)
find_package(fmt REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(CLI11 REQUIRED)
find_package(EXPAT REQUIRED)
pkg_check_modules(HEIF REQUIRED IMPORTED_TARGET libheif)
# Of its two builds the one whose objects may be used on several threads at once.
pkg_check_modules(RAW REQUIRED IMPORTED_TARGET libraw_r)
# It asks users for its own -fopenmp, which they do not need, and which clang cannot link here.
set_target_properties(PkgConfig::RAW PROPERTIES INTERFACE_COMPILE_OPTIONS "" INTERFACE_LINK_OPTIONS "")
pkg_check_modules(EXIV2 REQUIRED IMPORTED_TARGET exiv2)
pkg_check_modules(ZIP REQUIRED IMPORTED_TARGET libzip)
pkg_check_modules(HWY REQUIRED IMPORTED_TARGET libhwy)
pkg_check_modules(LCMS2 REQUIRED IMPORTED_TARGET lcms2)
pkg_check_modules(FFMPEG REQUIRED IMPORTED_TARGET libavformat libavcodec libavutil libswscale)

if(KELVARA_APP)
  find_package(Qt6 6.4 REQUIRED
    COMPONENTS Core DBus Gui Network Widgets Svg Multimedia MultimediaWidgets LinguistTools)
  pkg_check_modules(XCB REQUIRED IMPORTED_TARGET xcb)
  set(CMAKE_AUTOMOC_MOC_OPTIONS "")
endif()
if(KELVARA_TESTS)
  find_package(GTest REQUIRED)
  include(GoogleTest)
  if(KELVARA_APP)
    find_package(Qt6 6.4 REQUIRED COMPONENTS Test)
  endif()
endif()
