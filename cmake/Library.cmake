# The library itself: nothing but a C++20 compiler goes into it.

set(VEXAKIT_SOURCES
    geometry/accessors.cpp
    geometry/construction.cpp
    geometry/intersection/aligned_edges.cpp
    geometry/intersection/dispatch.cpp
    geometry/intersection/edge_crossings.cpp
    geometry/intersection/equal_points.cpp
    geometry/intersection/level_lines.cpp
    geometry/intersection/level_point.cpp
    geometry/intersection/level_rings.cpp
    geometry/intersection/level_shapes.cpp
    geometry/intersection/line_cells.cpp
    geometry/intersection/pair_tests.cpp
    geometry/intersection/pairwise.cpp
    geometry/intersection/polygon_polygon.cpp
    geometry/intersection/polygon_tests.cpp
    geometry/intersection/prepared_polygon.cpp
    geometry/intersection/ring_classification.cpp
    geometry/intersection/ring_frame.cpp
    geometry/intersection/segment_distance.cpp
    geometry/intersection/segment_pairs.cpp
    geometry/intersection/segment_set.cpp
    geometry/intersection/stretches.cpp
    geometry/intersection/sure_segments.cpp
    geometry/intersection/sure_triangle_pairs.cpp
    geometry/intersection/sure_triangles.cpp
    geometry/range.cpp
    geometry/range_by_vectors.cpp
    geometry/size.cpp
    geometry/walkers.cpp
    locks/inter_process_lock.cpp
    locks/mutex_lock.cpp
    locks/object_name.cpp
    locks/reference_count.cpp
    locks/reg_settings.cpp
    locks/rw_lock.cpp
    locks/slot_array.cpp
    locks/thread_lock.cpp
    locks/thread_locks.cpp
    numbers/decimal_printing.cpp
    platform/vector_width.cpp
    strings/conversion.cpp
    strings/copying.cpp
    strings/delimiters.cpp
    strings/environment.cpp
    strings/formatting.cpp
    strings/fractions.cpp
    strings/multibyte_editing.cpp
    strings/multibyte_paths.cpp
    strings/multibyte_search.cpp
    strings/multibyte_stripping.cpp
    strings/multibyte_text.cpp
    strings/multibyte_tokens.cpp
    strings/release.cpp
    strings/short_tokens.cpp
    strings/wide_editing.cpp
    strings/wide_numbers.cpp
    strings/wide_paths.cpp
    strings/wide_search.cpp
    strings/wide_stripping.cpp
    strings/wide_tokens.cpp
    transform/geometry_transform.cpp
    transform/matrix.cpp
    wkt/geometry_builder.cpp
    wkt/number_scan.cpp
    wkt/parse_interface.cpp
    wkt/parse_run.cpp
    wkt/parser.cpp
    wkt/plain_reader.cpp
    wkt/point_text.cpp
    wkt/scan_buffer.cpp
    wkt/writer.cpp)

set(VEXAKIT_GENERATED_SOURCES
    wkt/generated/grammar.cpp
    wkt/generated/scanner.cpp)

set(VEXAKIT_PLATFORM_SOURCES
    critical_section.cpp
    decimal_point.cpp
    encodings.cpp
    formatted_print.cpp
    identity.cpp
    kernel_objects.cpp
    multibyte.cpp
    number_print.cpp
    security.cpp
    short_lock.cpp
    wide_characters.cpp)
# Windows knows its code pages and character classes itself; its tests compare these with them.
set(VEXAKIT_CODE_PAGE_SOURCES
    platform/posix/code_page_to_wide.cpp
    platform/posix/code_pages.cpp
    platform/posix/locale_charset.cpp
    platform/posix/utf8.cpp
    platform/posix/utf8_by_vectors.cpp
    platform/posix/wide_classes.cpp
    platform/posix/wide_length.cpp
    platform/posix/wide_to_code_page.cpp
    platform/posix/tables/double_byte.cpp
    platform/posix/tables/single_byte.cpp
    platform/posix/tables/wide_classes.cpp)
if(WIN32)
    list(TRANSFORM VEXAKIT_PLATFORM_SOURCES PREPEND platform/windows/)
else()
    list(TRANSFORM VEXAKIT_PLATFORM_SOURCES PREPEND platform/posix/)
    list(APPEND VEXAKIT_PLATFORM_SOURCES ${VEXAKIT_CODE_PAGE_SOURCES}
        platform/posix/event_state.cpp
        platform/posix/futex.cpp
        platform/posix/handle_table.cpp
        platform/posix/mutex_state.cpp
        platform/posix/named_mutexes.cpp
        platform/posix/object_path.cpp
        platform/posix/shared_file.cpp)
endif()

# A generated machine keeps its generator's habits.
set_source_files_properties(${VEXAKIT_GENERATED_SOURCES} PROPERTIES
    COMPILE_OPTIONS "-Wno-conversion;-Wno-sign-conversion;-Wno-old-style-cast;-Wno-unused")

# Compiled once: for the library, and for the tests of what it does not export.
add_library(vexakit_objects OBJECT
    ${VEXAKIT_SOURCES} ${VEXAKIT_GENERATED_SOURCES} ${VEXAKIT_PLATFORM_SOURCES})
target_include_directories(vexakit_objects PUBLIC
    ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
target_compile_definitions(vexakit_objects PRIVATE VEXAKIT_BUILDING)
target_link_libraries(vexakit_objects PRIVATE vexakit_settings)
target_compile_options(vexakit_objects PRIVATE
    # A second name of a function does not inherit what the compiler found out about the first.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-missing-attributes>)

add_library(vexakit SHARED)
add_library(vexakit::vexakit ALIAS vexakit)
target_link_libraries(vexakit PRIVATE vexakit_objects vexakit_settings Threads::Threads)
target_include_directories(vexakit INTERFACE ${PROJECT_SOURCE_DIR}/include)
set_target_properties(vexakit PROPERTIES
    PREFIX "${CMAKE_SHARED_LIBRARY_PREFIX}"
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR})
if(WIN32)
    # The DLL's name carries no prefix and no version.
    set_target_properties(vexakit PROPERTIES PREFIX "" RUNTIME_OUTPUT_NAME vexakit)
else()
    target_link_options(vexakit PRIVATE
        -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/vexakit.map
        -Wl,-z,relro,-z,now,-z,noexecstack)
    set_target_properties(vexakit PROPERTIES LINK_DEPENDS
        ${PROJECT_SOURCE_DIR}/cmake/vexakit.map)
    if(NOT VEXAKIT_SANITIZE)
        target_link_options(vexakit PRIVATE -Wl,-z,defs)
    endif()
endif()
