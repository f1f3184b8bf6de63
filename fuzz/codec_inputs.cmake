# add_codec_inputs(target): gives the target the generated header
# codec_inputs.h, which holds the seed corpus and the regression inputs.
set(CODEC_INPUTS_DIR ${CMAKE_CURRENT_LIST_DIR})

function(add_codec_inputs target)
  file(GLOB inputs CONFIGURE_DEPENDS ${CODEC_INPUTS_DIR}/corpus/* ${CODEC_INPUTS_DIR}/regressions/accepted/*
       ${CODEC_INPUTS_DIR}/regressions/rejected/*)
  set(dir ${CMAKE_CURRENT_BINARY_DIR}/${target}_inputs)
  add_custom_command(OUTPUT ${dir}/codec_inputs.h
    COMMAND ${CMAKE_COMMAND} -DOUT=${dir}/codec_inputs.h -P ${CODEC_INPUTS_DIR}/embed_inputs.cmake
    DEPENDS ${inputs} ${CODEC_INPUTS_DIR}/embed_inputs.cmake VERBATIM)
  target_sources(${target} PRIVATE ${dir}/codec_inputs.h)
  target_include_directories(${target} PRIVATE ${dir})
endfunction()
