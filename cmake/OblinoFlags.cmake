# The one place that decides how every target of the project is compiled.
add_library(oblino_flags INTERFACE)
target_compile_features(oblino_flags INTERFACE cxx_std_20)
target_compile_options(oblino_flags INTERFACE
  -Wall -Wextra -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
  -fno-math-errno)
target_compile_definitions(oblino_flags INTERFACE
  QT_NO_FOREACH
  QT_NO_CAST_FROM_ASCII
  QT_NO_CAST_TO_ASCII
  QT_NO_URL_CAST_FROM_STRING
  QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
  QT_NO_KEYWORDS
  QT_STRICT_ITERATORS
  QT_DISABLE_DEPRECATED_BEFORE=0x060400)
target_include_directories(oblino_flags INTERFACE "${PROJECT_BINARY_DIR}/include/config")
if(OBLINO_WARNINGS_AS_ERRORS)
  target_compile_options(oblino_flags INTERFACE -Werror)
endif()
if(OBLINO_SANITIZE)
  target_compile_options(oblino_flags INTERFACE -fsanitize=${OBLINO_SANITIZE} -fno-omit-frame-pointer)
  target_link_options(oblino_flags INTERFACE -fsanitize=${OBLINO_SANITIZE})
else()
  target_compile_options(oblino_flags INTERFACE -fstack-protector-strong)
  # Needs an optimizer; some compilers define it by themselves.
  target_compile_options(oblino_flags INTERFACE "$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  target_link_options(oblino_flags INTERFACE -Wl,-z,relro,-z,now)
endif()
