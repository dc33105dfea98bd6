# Finds QScintilla for Qt 6: the imported target QScintilla::QScintilla.
find_path(QScintilla_INCLUDE_DIR Qsci/qsciscintilla.h PATH_SUFFIXES qt6
  HINTS ${Qt6Core_INCLUDE_DIRS})
find_library(QScintilla_LIBRARY NAMES qscintilla2_qt6)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(QScintilla REQUIRED_VARS QScintilla_LIBRARY QScintilla_INCLUDE_DIR)

if(QScintilla_FOUND AND NOT TARGET QScintilla::QScintilla)
  add_library(QScintilla::QScintilla UNKNOWN IMPORTED)
  set_target_properties(QScintilla::QScintilla PROPERTIES
    IMPORTED_LOCATION "${QScintilla_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${QScintilla_INCLUDE_DIR}")
endif()
mark_as_advanced(QScintilla_INCLUDE_DIR QScintilla_LIBRARY)
