#!/bin/sh
# Redraws the media of the shipped themes into resources/: page backgrounds (Backgr/, small
# tiling JPEGs), border, title and inline pictures (Images/, GIFs) and background sounds
# (Sounds/, short WAVs). Everything is drawn here from shapes, noise and tones, so the files
# can be changed and redrawn; the build never runs this, the generated files are kept in the tree.
# Needs ImageMagick's `convert` and /usr/bin/python3.
#
# Usage: scripts/make-theme-media.sh        (from anywhere inside the checkout)
set -eu
CONVERT=${CONVERT:-/usr/bin/convert}

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BACKGR="$ROOT/resources/Backgr"
IMAGES="$ROOT/resources/Images"
SOUNDS="$ROOT/resources/Sounds"
mkdir -p "$BACKGR" "$IMAGES" "$SOUNDS"

# ---- page backgrounds: seamless tiles -------------------------------------------------------
# Random noise blurred with tiling edges, then mapped onto two close colours.
tile() { # name size seed blur dark light
    "$CONVERT" -size "$2x$2" xc:gray50 -seed "$3" +noise Random -virtual-pixel tile \
        -blur "0x$4" -colorspace Gray -auto-level -colorspace sRGB -type TrueColor +level-colors "$5,$6" \
        -strip -quality 70 "$BACKGR/$1"
}
tile parchment.jpg 160 7 3 '#E6D5B0' '#F8EFD9'

# Woven linen: noise smeared along both axes.
"$CONVERT" -size 160x160 xc:gray50 -seed 11 +noise Random -virtual-pixel tile \
    \( -clone 0 -motion-blur 0x8+0 \) \( -clone 0 -motion-blur 0x8+90 \) -delete 0 \
    -compose Multiply -composite -colorspace Gray -auto-level -colorspace sRGB -type TrueColor +level-colors '#DDD5C4,#F4F0E6' \
    -strip -quality 70 "$BACKGR/linen.jpg"

# Soft waves whose periods divide the tile, so the edges meet.
"$CONVERT" -size 160x160 xc: \
    -fx '0.5+0.5*sin(2*pi*(2*j/h + 0.08*sin(2*pi*2*i/w)))' \
    +level-colors '#C9E4F5,#EAF6FD' -strip -quality 72 "$BACKGR/waves.jpg"

# Garden: a light lattice of dots on green.
"$CONVERT" -size 120x120 xc: \
    -fx '0.5+0.5*cos(2*pi*3*i/w)*cos(2*pi*3*j/h)' -level 20%,100% \
    +level-colors '#D4EBC6,#F2F9EC' -strip -quality 72 "$BACKGR/garden.jpg"

# Twilight sky: sparse white stars on a pale blue-grey, light enough for the page's own text.
"$CONVERT" -size 200x200 xc:gray50 -seed 3 +noise Random -colorspace Gray -threshold 99.3% \
    -virtual-pixel tile -blur 0x0.6 -auto-level -colorspace sRGB -type TrueColor \
    +level-colors '#C5CDE2,#FFFFFF' -strip -quality 75 "$BACKGR/stars.jpg"

# ---- pictures ---------------------------------------------------------------------------------
gif() { # name size background draw-args...
    out="$IMAGES/$1"
    size=$2
    shift 2
    "$CONVERT" -size "$size" xc:none +antialias "$@" -strip "$out"
}

# Ornamental rules for the top and bottom of the text.
gif scroll_rule.gif 480x28 -fill none -stroke '#8B5A2B' -strokewidth 2 \
    -draw 'line 36,14 214,14' -draw 'line 266,14 444,14' \
    -fill '#8B5A2B' -draw 'polygon 240,3 253,14 240,25 227,14' \
    -draw 'circle 30,14 34,14' -draw 'circle 450,14 454,14' \
    -draw 'circle 220,14 222,14' -draw 'circle 260,14 262,14'

wave_points=$(/usr/bin/python3 -c '
import math
print(" ".join("%d,%d" % (x, 14 + round(7 * math.sin(x / 480 * 2 * math.pi * 8))) for x in range(0, 481, 4)))')
gif wave_rule.gif 480x28 -fill none -stroke '#2E86AB' -strokewidth 3 -draw "polyline $wave_points"

leaves=""
for x in 60 120 180 240 300 360 420; do
    leaves="$leaves ellipse $x,9 9,4 0,360 ellipse $((x + 30)),19 9,4 0,360"
done
gif vine_rule.gif 480x28 -fill none -stroke '#3C7A2A' -strokewidth 2 -draw 'line 20,14 460,14' \
    -stroke none -fill '#5A9E3E' -draw "$leaves" -fill '#D9475C' \
    -draw 'circle 20,14 25,14' -draw 'circle 460,14 465,14'

star() { # cx cy r: a five-pointed star polygon
    /usr/bin/python3 -c '
import math, sys
cx, cy, r = map(float, sys.argv[1:])
pts = []
for k in range(10):
    a = -math.pi / 2 + k * math.pi / 5
    rr = r if k % 2 == 0 else r * 0.42
    pts.append("%d,%d" % (round(cx + rr * math.cos(a)), round(cy + rr * math.sin(a))))
print("polygon " + " ".join(pts))' "$@"
}
gif star_rule.gif 480x28 -fill none -stroke '#B8960B' -strokewidth 1 \
    -draw 'line 20,14 200,14' -draw 'line 280,14 460,14' -stroke '#9A7B1E' -fill '#F4D35E' \
    -draw "$(star 240 14 12)" -draw "$(star 214 14 7)" -draw "$(star 266 14 7)"

# Title pictures beside the heading.
gif sailboat.gif 64x64 -stroke '#0B4F7C' -strokewidth 2 -fill white \
    -draw 'polygon 32,6 32,44 12,44' -draw 'polygon 36,12 36,44 54,44' \
    -fill '#0B4F7C' -draw 'polygon 6,48 58,48 50,58 14,58' -draw 'line 34,4 34,48'

petals=""
for a in 0 72 144 216 288; do
    petals="$petals $(/usr/bin/python3 -c "
import math
a = math.radians($a - 90)
print('circle %d,%d %d,%d' % (28 + 13 * math.cos(a), 28 + 13 * math.sin(a), 28 + 13 * math.cos(a) + 10, 28 + 13 * math.sin(a)))")"
done
gif flower.gif 56x56 -fill '#E86A92' -stroke '#B83B66' -strokewidth 1 -draw "$petals" \
    -fill '#F7C948' -stroke '#C99A1E' -draw 'circle 28,28 35,28'

gif rosette.gif 72x72 -fill '#9B2335' -stroke none \
    -draw 'polygon 22,44 14,70 26,64 32,72 36,48' -draw 'polygon 50,44 58,70 46,64 40,72 36,48' \
    -fill '#C9A227' -stroke '#7A5C12' -strokewidth 2 -draw 'circle 36,30 36,4' \
    -fill '#F1DA84' -stroke none -draw "$(star 36 30 17)"

# Inline picture: a thank-you card in the collector's colours.
"$CONVERT" -size 320x64 xc:none +antialias -fill '#FFF6E0' -stroke '#7A4A2A' -strokewidth 3 \
    -draw 'roundrectangle 2,2 317,61 12,12' -antialias -stroke none -fill '#4A2C2A' \
    -font Times-BoldItalic -pointsize 26 -gravity center -annotate +0+0 'Thank you for looking!' \
    -background '#FFFDF7' -flatten +dither -colors 32 -strip "$IMAGES/thanks.gif"

# ---- sounds -----------------------------------------------------------------------------------
/usr/bin/python3 - "$SOUNDS" <<'EOF'
import math, struct, sys, wave

RATE = 11025

def write(name, notes):
    """notes: (start seconds, frequency, length seconds); bell-like decaying tones."""
    length = max(s + l for s, _, l in notes)
    samples = [0.0] * int(RATE * length)
    for start, freq, dur in notes:
        first = int(RATE * start)
        for n in range(int(RATE * dur)):
            t = n / RATE
            env = math.exp(-4.0 * t / dur) * min(1.0, t * 200)
            v = env * (math.sin(2 * math.pi * freq * t) + 0.3 * math.sin(2 * math.pi * 2 * freq * t))
            samples[first + n] += v
    peak = max(abs(s) for s in samples) or 1
    data = bytes(int(128 + 100 * s / peak) for s in samples)
    with wave.open(sys.argv[1] + "/" + name, "wb") as w:
        w.setnchannels(1)
        w.setsampwidth(1)
        w.setframerate(RATE)
        w.writeframes(data)

write("chime.wav", [(0.0, 1318.5, 0.9), (0.25, 1046.5, 1.1)])
write("fanfare.wav", [(0.0, 523.3, 0.35), (0.18, 659.3, 0.35), (0.36, 784.0, 0.8)])
EOF

du -ch "$BACKGR" "$IMAGES" "$SOUNDS" | tail -1
