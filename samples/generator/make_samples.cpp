// Writes the sample assemblies: `make_samples FOLDER` makes lantern.stp in FOLDER.

#include "samples/generator/step_writer.h"

#include <cmath>
#include <fstream>
#include <iostream>
#include <string>

namespace {

using assembly::samples::Polygon;
using assembly::samples::Rectangle;
using assembly::samples::StepWriter;
using Definition = StepWriter::Definition;

constexpr double kPi = 3.14159265358979323846;
constexpr int kPosts = 4;
constexpr double kPostCircle = 30;  // mm
constexpr double kHeight = 80;      // mm

Definition AddScrew(StepWriter& file) {
    const Definition screw = file.AddAssembly("S-10", "Vis à tête hexagonale", "M3 x 8");
    const Definition shaft = file.AddPart("S-11", "Schaft M3", "", Polygon(12, 1.5), 8, {0.7, 0.7, 0.75});
    const Definition head = file.AddPart("S-12", "Kopf Ø5", "", Polygon(6, 2.5), 3, {0.5, 0.5, 0.55});
    file.AddUse(screw, shaft, "1", "Schaft", "", {0, 0, -8});
    file.AddUse(screw, head, "2", "Kopf", "", {0, 0, 0}, 15);
    return screw;
}

Definition AddCage(StepWriter& file, const Definition& screw) {
    const Definition cage = file.AddAssembly("L-20", "Gehäuse", "four posts between two plates");
    const Definition plate = file.AddPart("L-21", "Platte", "", Polygon(8, 38), 4, {0.8, 0.65, 0.2});
    const Definition post = file.AddPart("L-22", "Säule", "", Rectangle(4, 4), kHeight, {0.8, 0.65, 0.2});
    file.AddUse(cage, plate, "3", "Platte unten", "", {0, 0, 0});
    file.AddUse(cage, plate, "4", "Platte oben", "", {0, 0, kHeight + 4});
    for (int i = 0; i < kPosts; ++i) {
        const double angle = 2 * kPi * i / kPosts;
        const auto rounded = [](double value) { return std::round(value * 1e6) / 1e6; };
        const double x = rounded(kPostCircle * std::cos(angle)), y = rounded(kPostCircle * std::sin(angle));
        const std::string number = std::to_string(i + 1);
        file.AddUse(cage, post, "5." + number, "Säule " + number, "P" + number, {x, y, 4},
                    360.0 * i / kPosts);
        file.AddUse(cage, screw, "6." + number, "Vis " + number, "V" + number, {x, y, kHeight + 8});
    }
    return cage;
}

Definition AddLamp(StepWriter& file, const Definition& screw) {
    const Definition lamp = file.AddAssembly("L-30", "ランプ", "");
    const Definition socket = file.AddPart("L-31", "Socket 🔌", "", Rectangle(40, 40), 2, {0.4, 0.4, 0.4});
    const Definition bulb = file.AddPart("L-32", "電球", "", Polygon(16, 12), 30, {1, 0.95, 0.7});
    file.AddUse(lamp, socket, "7", "Socket 🔌", "", {0, 0, 0});
    file.AddUse(lamp, bulb, "8", "電球", "", {0, 0, 2});
    file.AddUse(lamp, screw, "9.1", "Vis A", "V5", {-15, 0, 2});
    file.AddUse(lamp, screw, "9.2", "Vis B", "V6", {15, 0, 2});
    return lamp;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: make_samples FOLDER\n";
        return 2;
    }
    StepWriter file("lantern.stp");
    const Definition screw = AddScrew(file);
    const Definition lantern =
        file.AddAssembly("L-1", "Laterne „Größe M“", "sample assembly of three levels");
    file.AddUse(lantern, AddCage(file, screw), "1", "Gehäuse", "", {0, 0, 0});
    file.AddUse(lantern, AddLamp(file, screw), "2", "Lampe", "L1", {0, 0, 4});

    const std::string path = std::string(argv[1]) + "/lantern.stp";
    std::ofstream out(path, std::ios::binary);
    out << file.Text();
    if (!out.flush()) {
        std::cerr << "make_samples: " << path << ": not written\n";
        return 4;
    }
    return 0;
}
