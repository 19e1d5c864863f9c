/* The recognition engine's C interface: libXUNRec90.so. Coordinates are 16-bit page units of
   1/100 inch; every call answers a 16-bit code, 0 for success (the other codes below and in
   docs/engine.md). The engine holds one current image per process and is not thread-safe: one
   load, its work and the unload at a time. */
#ifndef XUNREC_H
#define XUNREC_H

#include <stdint.h>

#if defined(__i386__)
#define XUNREC_CALL __attribute__((stdcall))
#else
#define XUNREC_CALL
#endif
#define XUNREC_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

enum {
  XUNREC_OK = 0,
  /* Loading an image file. */
  XUNREC_FILE_NOT_FOUND = 101,  /* no such file, or not a regular file */
  XUNREC_NOT_AN_IMAGE = 102,    /* not TIFF, PNG, JPEG, PCX or DCX, or damaged */
  XUNREC_IMAGE_TOO_LARGE = 103, /* beyond the engine's size limits */
  XUNREC_SIZE_MISMATCH = 104,   /* the image is not the width and height the caller gave */
  XUNREC_OUT_OF_MEMORY = 105,
  /* Arguments. */
  XUNREC_NO_IMAGE = 201,      /* no image is loaded */
  XUNREC_BAD_ARGUMENT = 202,  /* a null pointer, a count or resolution out of range */
  XUNREC_BAD_RECTANGLE = 203, /* an empty rectangle, or one wholly off the image */
  /* Bubble grids. */
  XUNREC_NO_GRID = 301,       /* no bubble grid in the rectangle */
  XUNREC_GRID_MISMATCH = 302, /* the rectangle holds more rows or columns than asked for */
  /* Alignment. */
  XUNREC_ALIGN_WEAK = 401,      /* fewer than 60% of the grid's bubbles at the best place */
  XUNREC_ALIGN_AMBIGUOUS = 402, /* another place matches almost as well */
  XUNREC_ALIGN_TOO_FAR = 403,   /* the grid lies beyond the search distance */
  /* Timing marks. */
  XUNREC_NO_MARKS = 501,       /* no timing-mark track in the rectangle */
  XUNREC_TOO_MANY_MARKS = 502, /* more marks than the array holds; the first ones are written */
  /* Others. */
  XUNREC_NOT_SUPPORTED = 901, /* the classic entry points */
  XUNREC_INTERNAL_ERROR = 999
};

/* The mark record of XUNREC_get_mark_areas, in page units. */
typedef struct XUNREC_MarkArea {
  int16_t left, top, width, height;
} XUNREC_MarkArea;

XUNREC_API int16_t XUNREC_CALL XUNREC_load_image(const char* file, int32_t reserved, int16_t xdpi,
                                                 int16_t ydpi, int16_t width, int16_t height);
XUNREC_API int16_t XUNREC_CALL XUNREC_unload_image(void);
XUNREC_API int16_t XUNREC_CALL XUNREC_search_omr_field(int16_t left, int16_t top, int16_t right,
                                                       int16_t bottom, int16_t* rows,
                                                       int16_t* cols);
XUNREC_API int16_t XUNREC_CALL XUNREC_check_omr_field(int16_t rows, int16_t cols, int16_t left,
                                                      int16_t top, int16_t right, int16_t bottom,
                                                      int16_t* results);
XUNREC_API int16_t XUNREC_CALL XUNREC_check_omr_field_fill(int16_t rows, int16_t cols, int16_t left,
                                                           int16_t top, int16_t right,
                                                           int16_t bottom, int16_t* results,
                                                           int16_t* fill);
XUNREC_API int16_t XUNREC_CALL XUNREC_check_image_field(int16_t left, int16_t top, int16_t right,
                                                        int16_t bottom, int32_t* filled_pixels);
XUNREC_API int16_t XUNREC_CALL XUNREC_align_omr_field(int16_t left, int16_t top, int16_t right,
                                                      int16_t bottom, int16_t rows, int16_t cols,
                                                      int16_t search_distance, int16_t* new_left,
                                                      int16_t* new_top, int16_t* new_right,
                                                      int16_t* new_bottom);
XUNREC_API int16_t XUNREC_CALL XUNREC_get_mark_areas(int16_t left, int16_t top, int16_t right,
                                                     int16_t bottom, int16_t min_width,
                                                     int16_t min_height, int16_t max_marks,
                                                     int16_t* num_marks, void* marks);
/* Classic (timing-mark driven) recognition is not offered: both answer XUNREC_NOT_SUPPORTED and
   take no arguments. */
XUNREC_API int16_t XUNREC_CALL XUNREC_find_classic(void);
XUNREC_API int16_t XUNREC_CALL XUNREC_read_classic(void);

#ifdef __cplusplus
}
#endif

#endif
