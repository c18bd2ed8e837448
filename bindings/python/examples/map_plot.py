# SPDX-License-Identifier: Apache-2.0
# %% [markdown]
# # An intersection on paper
# MAP gives the lanes, SPAT the lights for them, BSM where vehicles are. Run as a script it writes a picture:
#
#     python3 map_plot.py messages.hex picture.png
#
# Messages are one a line, in hexadecimal digits; those of CN.MessageFrame are known here.

# %%
import math
import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as pyplot

import orlenta

FRAME = orlenta.type("CN.MessageFrame")
COLOURS = {"protected-green": "tab:green", "permissive-green": "yellowgreen", "yellow": "gold", "red": "tab:red"}
METRES = 0.0111319  # of 1e-7 degrees of latitude


# %%
class Plane:
    """Metres to the east and north of a position."""

    def __init__(self, origin):
        self.lat, self.lon = origin["lat"], origin["lon"]
        self.shrink = math.cos(math.radians(self.lat / 1e7))

    def place(self, lat, lon):
        return ((lon - self.lon) * METRES * self.shrink, (lat - self.lat) * METRES)

    def point(self, point):
        """Of a lane: as an offset from the intersection, or where it is."""
        form, offset = point["posOffset"]["offsetLL"]
        if form == "position-LatLon":
            return self.place(offset["lat"], offset["lon"])
        return self.place(self.lat + offset["lat"], self.lon + offset["lon"])


def lights(spat):
    """The light of each phase of each intersection, as it is now."""
    found = {}
    for intersection in spat["intersections"]:
        for phase in intersection["phases"]:
            found[intersection["intersectionId"]["id"], phase["id"]] = phase["phaseStates"][0]["light"]
    return found


def draw_lanes(axes, plane, node, found):
    for link in node.get("inLinks", []):
        for lane in link["lanes"]:
            xs, ys = zip(*(plane.point(point) for point in lane.get("points", [])))
            axes.plot(xs, ys, color="0.8", linewidth=3, solid_capstyle="butt", zorder=1)
            phases = [connection.get("phaseId") for connection in lane.get("connectsTo", [])]
            light = next((found[node["id"]["id"], phase] for phase in phases if (node["id"]["id"], phase) in found), None)
            axes.plot(xs[0], ys[0], "s", color=COLOURS.get(light, "0.5"), markersize=3.5, zorder=3)
            axes.annotate(str(lane["laneID"]), (xs[-1], ys[-1]), fontsize=7, ha="center", zorder=4)


def draw_tracks(axes, plane, messages):
    tracks = {}
    for bsm in messages:
        tracks.setdefault(bsm["id"], []).append(plane.place(bsm["pos"]["lat"], bsm["pos"]["lon"]))
    for number, track in tracks.items():
        axes.plot(*zip(*track), ".-", linewidth=1, markersize=4, zorder=5, label=f"vehicle {number.hex()}")


def draw(messages):
    """A figure of all intersections, lights and vehicles in the messages."""
    values = FRAME.decode_many(messages)
    by_name = {}
    for name, value in values:
        by_name.setdefault(name, []).append(value)
    figure, axes = pyplot.subplots(figsize=(7, 7))
    found = {}
    for spat in by_name.get("spatFrame", []):
        found.update(lights(spat))
    nodes = [node for message in by_name.get("mapFrame", []) for node in message["nodes"]]
    plane = Plane(nodes[0]["refPos"])
    for node in nodes:
        draw_lanes(axes, plane, node, found)
    draw_tracks(axes, plane, by_name.get("bsmFrame", []))
    axes.set_title(nodes[0].get("name", "MAP"))
    axes.set_xlabel("metres to the east")
    axes.set_ylabel("metres to the north")
    axes.set_aspect("equal")
    if by_name.get("bsmFrame"):
        axes.legend(loc="lower right", fontsize=8)
    return figure


# %%
if __name__ == "__main__":
    source, target = sys.argv[1:]
    with open(source) as file:
        draw([bytes.fromhex(line) for line in file if line.strip()]).savefig(target, dpi=80)
