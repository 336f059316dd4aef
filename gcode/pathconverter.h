// The SVG-to-G-code path converter: flattens the drawing's Bezier segments, orders
// the paths for short travel and writes laser or CNC G-code with C stdio.
#ifndef PATHCONVERTER_H
#define PATHCONVERTER_H

// The converter is a plain procedure over module-wide settings that keep their
// values from one conversion to the next; Svg2GcodeP is its Qt face. Positions are
// in millimetres, speeds in mm/min.

// Header text written before the paths. `length` bytes are copied over the start of
// a 64-byte buffer with no terminator: a shorter header leaves the tail of a longer
// earlier one in place. Bytes past 64 are dropped.
void pathconv_set_header(const char *text, int length);
void pathconv_set_print_mode(int mode);  // 0 laser, anything else CNC router
void pathconv_set_travel_speed(float speed);
void pathconv_set_feed_speed(float speed);
void pathconv_set_print_z(float z);             // CNC cutting depth
void pathconv_set_travel_z(float z);            // CNC safe height
void pathconv_set_machine_ymax(int maxy);       // kept; the work area is always 200 mm high
void pathconv_set_laser(int power);             // "M106 S<power> \n" and the half-power line
void pathconv_set_size(int width, int height);  // target size of the drawing in mm
void pathconv_set_offset(float x, float y);     // placement of the drawing's corner

// The path order is shuffled from the clock's seconds; a fixed value makes a run
// repeatable. pathconv_use_clock_seed() goes back to the clock.
void pathconv_use_fixed_seed(long long seconds);
void pathconv_use_clock_seed();
// The path order's random draws and swap tests use the CPU's vector unit where it has
// one; this makes them with plain code instead (same numbers and order, slower).
void pathconv_use_portable_draws(int on);

// Converts `input` (SVG) to `output` (G-code), the paths as given in the local
// 8-bit encoding, as fopen takes them. Returns 0, -1 when the input cannot be
// read or the output cannot be created, or -2 when a position or setting would
// not be a finite number (no file is written then).
int pathconv_convert(const char *input, const char *output, int bezier);

// The same for a drawing already read (in millimetres at 0.1 dpi, as pathconv_convert
// reads it); `name` stands for it in the messages. The drawing is left as it is.
struct SvgImage;
int pathconv_convert_image(const SvgImage *image, const char *name, const char *output, int bezier);

// Seconds of feed moves added up over the conversions since the last call; resets to 0.
float pathconv_take_estimate();

#endif
