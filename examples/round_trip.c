#include "vexakit/vexakit.h"

#include <stdio.h>

int main(void) {
    GeometryBuffer* line = NULL;
    if (vexaParse_string("LINESTRING (0 0 0, 3 4 0, 3 4 12)", &line) != VEXA_SUCCESS) return 1;

    uint32_t vertices = 0;
    vexaWKB_lineGetPointCount(line, &vertices);
    VexaWChar text[100 + 1];
    vexaWKB_convertBinaryToText(line, text, 100 * sizeof *text);

    printf("type %u, %u vertices: ", line->type, vertices);
    for (const VexaWChar* next = text; *next; ++next) putchar(*next);
    putchar('\n');
    vexaWKB_destroyGeom(&line);
}
