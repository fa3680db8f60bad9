# SPDX-License-Identifier: MIT
# What every target of the project is compiled with.
#
# Contraction of a*b+c into a fused multiply-add would change orientation signs, intersection codes
# and ties between machines, so it is off everywhere, and no fast-math flag is ever given.
function(jwcg_target name)
    target_compile_features(${name} PUBLIC cxx_std_17)
    set_target_properties(${name} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON)
    target_compile_options(${name} PRIVATE
        -ffp-contract=off -Wall -Wextra -Wpedantic -Wshadow)
    if(JWCG_WERROR)
        target_compile_options(${name} PRIVATE -Werror)
    endif()
    if(JWCG_SANITIZE)
        target_compile_options(${name} PRIVATE
            -fsanitize=${JWCG_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all -g)
        target_link_options(${name} PUBLIC -fsanitize=${JWCG_SANITIZE})
    endif()
endfunction()
