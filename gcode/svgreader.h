// Reads an SVG file into the shapes / paths / cubic points model of svgimage.h.
// Only the outline geometry is kept: paint, text, images and gradients are skipped.
#ifndef SVGREADER_H
#define SVGREADER_H

#include "svgimage.h"

#include <QByteArray>

// Parses the drawing elements (path, rect, circle, ellipse, line, polyline,
// polygon) with the transforms of their groups applied. Coordinates come out in
// `units` ("px", "pt", "pc", "mm", "cm", "q", "in") for a document rendered at `dpi`:
// the document's width/height and viewBox fix the size of a user unit (a side not given,
// negative or unreadable follows the other through the viewBox); a document without a
// viewBox is taken in px and shifted so that its drawing starts at 0,0. Lengths follow
// CSS: the absolute units, em, ex, cap, ic, lh, rlh, the viewport units and %; a length
// that does not parse leaves the property as if it were not given.
// Elements with display none, and whatever sits in defs (and in clip paths, masks,
// markers, patterns and symbols), are not drawn.
class SvgReader
{
public:
    // The file is opened by the bytes of `path` as they stand, like fopen.
    // Returns nullptr when the file cannot be read, is not well-formed XML, has no
    // svg root, or has a size or coordinate too large for a float. Free with release().
    static SvgImage *parseFromFile(const char *path, const char *units, float dpi);
    static SvgImage *parse(const QByteArray &document, const char *units, float dpi);
    static void release(SvgImage *image);
};

#endif
