// A stand-in for the engine's shared library, for the tests of the dlopen binding: every entry
// point writes recognisable values and answers a code made of its arguments.
#include <cerrno>
#include <cstdint>

// The engine's mark record: left, top, width, height.
struct ReadArea {
  int16_t left, top, width, height;
};

extern "C" {

__attribute__((visibility("default"))) int16_t XUNREC_load_image(const char* file, int32_t,
                                                                 int16_t xdpi, int16_t, int16_t,
                                                                 int16_t) {
  errno = 42;  // the binding records it right after the call
  return static_cast<int16_t>(file[0] == 'x' ? 0 : xdpi);
}

__attribute__((visibility("default"))) int16_t XUNREC_search_omr_field(int16_t, int16_t, int16_t,
                                                                       int16_t, int16_t* rows,
                                                                       int16_t* cols) {
  *rows = 7;
  *cols = 9;
  return 0;
}

__attribute__((visibility("default"))) int16_t XUNREC_check_image_field(int16_t l, int16_t t,
                                                                        int16_t r, int16_t b,
                                                                        int32_t* filled) {
  *filled = (r - l) * (b - t);
  return 0;
}

__attribute__((visibility("default"))) int16_t XUNREC_get_mark_areas(int16_t, int16_t, int16_t,
                                                                     int16_t, int16_t, int16_t,
                                                                     int16_t max, int16_t* count,
                                                                     void* marks) {
  *count = 1;
  static_cast<ReadArea*>(marks)[0] = {1, 2, 3, 4};
  return static_cast<int16_t>(max);
}

#ifndef XUN_FAKE_ENGINE_PARTIAL
__attribute__((visibility("default"))) int16_t XUNREC_unload_image() {
  return 0;
}
#endif
}
