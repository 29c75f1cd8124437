/* A joiner's list: names in UTF-8, lengths in inches with decimals, pieces. Prints it as the workshop
   reads it, in fractions of an inch. */

#include "vexakit/vexakit.h"

#include <stdio.h>
#include <stdlib.h>

/* One part a line: name, length, pieces. */
static const char* const kList[] = {
    "Tischplatte; 47.25; 1",    "Füße, gedrechselt; 28.8125; 4", "Zarge, lang; 41.5; 2",
    "Querträger;  40.03125; 3", "Dübel 直径8; 1.57; 24",
};

enum { kNameField, kLengthField, kPiecesField, kFieldRoom = 64, kFractionRoom = 24 };

typedef struct Part {
    VexaWChar name[kFieldRoom];
    VexaWChar length[kFractionRoom];
    int32_t pieces;
} Part;

/* A copy of the text in the other encoding ends the program where there is no memory for it. */
static VexaWChar* toWide(const char* utf8) {
    VexaWChar* wide = NULL;
    if (stringCnv_utf8ToWcsAlloc(utf8, &wide) != VEXA_SUCCESS) exit(EXIT_FAILURE);
    return wide;
}

static char* toUtf8(const VexaWChar* wide) {
    char* utf8 = NULL;
    if (stringCnv_wcsToUTF8Alloc(wide, &utf8) != VEXA_SUCCESS) exit(EXIT_FAILURE);
    return utf8;
}

static int readField(const VexaWChar* line, int32_t index, VexaWChar* field) {
    VexaWChar* const delimiters = toWide(";");
    const uint32_t status = string_getTokenByIndexW(line, delimiters, index, field, kFieldRoom);
    string_freeW(delimiters);
    return status == VEXA_SUCCESS;
}

static int readPart(const VexaWChar* line, Part* part) {
    VexaWChar field[kFieldRoom];
    if (!readField(line, kNameField, part->name)) return 0;

    if (!readField(line, kLengthField, field)) return 0;
    char* const inches = toUtf8(field);
    string_convertDoubleToFracW(strtod(inches, NULL), part->length);
    string_freeA(inches);

    if (!readField(line, kPiecesField, field)) return 0;
    return string_readLongW(field, &part->pieces) != NULL;
}

static void printPart(const Part* part) {
    VexaWChar* const format = toWide("%3d x %-18s %12s in");
    VexaWChar* const row =
        string_sprintfAllocW(malloc, format, part->pieces, part->name, part->length);
    if (!row) exit(EXIT_FAILURE);

    char* const text = toUtf8(row);
    puts(text);
    string_freeA(text);
    string_freeW(row);
    string_freeW(format);
}

int main(void) {
    for (size_t i = 0; i < sizeof kList / sizeof *kList; ++i) {
        VexaWChar* const line = toWide(kList[i]);
        Part part;
        if (!readPart(line, &part)) return EXIT_FAILURE;
        printPart(&part);
        string_freeW(line);
    }
    return EXIT_SUCCESS;
}
