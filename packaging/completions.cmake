# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# What makes bash, zsh and fish complete command lines, as s7ppi itself prints it, where each looks for what packages
# bring along. Settings of whoever builds this are not heard.

set(completions ${CMAKE_CURRENT_BINARY_DIR}/completions)
file(MAKE_DIRECTORY ${completions})
set(prints ${CMAKE_COMMAND} -E env S7PPI_CONFIG= ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:s7ppi> completion)
add_custom_command(
  OUTPUT ${completions}/s7ppi ${completions}/_s7ppi ${completions}/s7ppi.fish
  COMMAND ${prints} bash -o ${completions}/s7ppi
  COMMAND ${prints} zsh -o ${completions}/_s7ppi
  COMMAND ${prints} fish -o ${completions}/s7ppi.fish
  DEPENDS s7ppi
  COMMENT "Making the completions"
  VERBATIM
)
add_custom_target(completions ALL DEPENDS ${completions}/s7ppi ${completions}/_s7ppi ${completions}/s7ppi.fish)
if(TARGET emulated_kernel)
  add_dependencies(completions emulated_kernel)
endif()

set(zsh_directory zsh/site-functions)
if(S7PPI_DEBIAN)
  set(zsh_directory zsh/vendor-completions)
endif()
install(FILES ${completions}/s7ppi DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT programs)
install(FILES ${completions}/_s7ppi DESTINATION ${CMAKE_INSTALL_DATADIR}/${zsh_directory} COMPONENT programs)
install(FILES ${completions}/s7ppi.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT programs)
