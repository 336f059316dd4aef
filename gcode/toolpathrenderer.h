// Draws the moves of a job onto a picture of the work area (170 x 200 mm unless told otherwise),
// as the beam would burn them: darker with more power, travel optional, CNC cuts coloured by depth.
#ifndef TOOLPATHRENDERER_H
#define TOOLPATHRENDERER_H

#include "gcodeinterpreter.h"

#include <QColor>
#include <QImage>

#include <vector>

class ToolpathRenderer
{
public:
    // Colour of travel moves, drawn only where nothing burns.
    static const QRgb TravelColour;
    // Depth colours: the shallowest cut and the deepest.
    static const QRgb ShallowColour;
    static const QRgb DeepColour;

    // A picture of an area of `areaWidth` x `areaHeight` mm at `pxPerMm`.
    explicit ToolpathRenderer(double pxPerMm, double areaWidth = GcodeInterpreter::WorkAreaWidth,
                              double areaHeight = GcodeInterpreter::WorkAreaHeight);

    void setShowTravel(bool show) { m_showTravel = show; }
    // Colours cuts by their depth (lowest Z) instead of their power.
    void setDepthColours(bool depth);

    int width() const { return m_width; }
    int height() const { return m_height; }
    double pxPerMm() const { return m_scale; }

    void addMove(const ToolpathMove &move);
    // The picture so far: white where nothing burns, machine origin at the bottom left.
    QImage image() const;

private:
    template <typename Plot>
    void rasterise(const ToolpathMove &move, Plot plot);

    double m_scale;
    double m_areaHeight;  // mm, for machine Y upwards
    int m_width;
    int m_height;
    bool m_showTravel = false;
    bool m_depthColours = false;
    std::vector<uchar> m_burn;    // 255 untouched, 0 burned at full power
    std::vector<uchar> m_travel;  // 1 where a travel move passes
    std::vector<float> m_depth;   // lowest Z of the cuts per pixel, with depth colours
};

#endif
