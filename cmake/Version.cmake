# MARLOWEN_VERSION_TEXT: the project's version as the programs print it, "3.000.00019".
string(REGEX REPLACE ".*(...)$" "\\1" minor "000${PROJECT_VERSION_MINOR}")
string(REGEX REPLACE ".*(.....)$" "\\1" build "00000${PROJECT_VERSION_PATCH}")
set(MARLOWEN_VERSION_TEXT "${PROJECT_VERSION_MAJOR}.${minor}.${build}")
