# SPDX-License-Identifier: GPL-3.0-or-later
# The scenes of the demo film as FFmpeg filter graphs: pictures from art/ that move over one another.
# Sourced by make-demo-film. Positions are in pixels of a 1280x720 picture, t is the time in the scene in seconds.
# shellcheck shell=bash

readonly frame_rate=25

declare -a graph_inputs
graph=""
top=""
layer_count=0

# One picture as an endless clip with transparency; what follows the name are filters for it.
clip() {
    local name=$1 label=$2 before=${3:-} after=${4:-}
    graph_inputs+=(-i "$art/$name.svg")
    # The decoder's colours are multiplied by their opacity, the filters expect them plain.
    graph+="[$((${#graph_inputs[@]} / 2 - 1)):v]format=gbrap,unpremultiply=inplace=1,${before:+$before,}"
    graph+="scale=out_color_matrix=bt709,format=yuva444p,"
    graph+="loop=loop=-1:size=1,setpts=N/($frame_rate*TB)${after:+,$after}[$label];"
}

# layer NAME X Y [FILTERS_ONCE [FILTERS_PER_FRAME [OVERLAY_OPTIONS]]]: lays a picture over what is there.
layer() {
    local label=p$layer_count
    clip "$1" "$label" "${4:-}" "${5:-}"
    put "$label" "$2" "$3" "${6:-}"
}

put() {
    graph+="[$top][$1]overlay=x='$2':y='$3':format=yuv444${4:+:$4}[b$layer_count];"
    top=b$layer_count
    layer_count=$((layer_count + 1))
}

background() {
    graph_inputs=()
    graph=""
    layer_count=0
    clip "$1" sheet
    graph+="[sheet]format=yuv444p[ground];"
    top=ground
}

# drift NAME SPEED Y: a wide picture whose halves are equal, passing by at SPEED pixels a second, without an end.
drift() {
    layer "$1" "-mod($2*t,1280)" "$3"
}

limb() {
    layer "$1" "$2" "$3" "" "rotate=a='$4':c=none"
}

# walker X Y STEPS: Tom on his way; STEPS is how many double steps he makes a second.
walker() {
    local x=$1 y=$2 phase="2*PI*$3*t" bob
    bob="$y-4*abs(sin($phase))"
    layer shadow "$x-60" "$y+217"
    limb tom-arm "$x+5" "$bob+27" "-0.55*sin($phase)"
    limb tom-leg "$x-20" "$bob+60" "-0.5*sin($phase)"
    limb tom-leg "$x-20" "$bob+60" "0.5*sin($phase)"
    layer tom-body "$x" "$bob"
    limb tom-arm "$x+5" "$bob+27" "0.55*sin($phase)"
}

# dog X Y STEPS: Milo beside or ahead.
dog() {
    local x=$1 y=$2 phase="2*PI*$3*t" bob
    bob="$y-5*abs(sin($phase))"
    layer shadow "$x-30" "$y+110"
    limb dog-leg "$x+68" "$bob+40" "0.6*sin($phase)"
    limb dog-leg "$x+6" "$bob+40" "-0.6*sin($phase)"
    limb dog-leg "$x+76" "$bob+40" "-0.6*sin($phase)"
    limb dog-leg "$x" "$bob+40" "0.6*sin($phase)"
    layer dog-body "$x" "$bob"
}

# gull X Y BEAT [SIZE]: BEAT is the time of one beat of the wings in seconds.
gull() {
    layer gull-up "$1" "$2" "scale=${4:-90}:-1" "" "enable='lt(mod(t,$3),$3/2)'"
    layer gull-down "$1" "$2" "scale=${4:-90}:-1" "" "enable='gte(mod(t,$3),$3/2)'"
}

rain() {
    layer "$1" 0 "-720+mod($2*t,720)"
}

scene_dawn() {
    background dawn-sky
    drift clouds-dawn 14 50
    layer sun 430 "290-150*t/$1"
    drift dawn-wave-far 18 424
    layer moonlight "460+6*sin(1.3*t)" "436+3*sin(2.1*t)"
    drift dawn-wave-mid 40 "500+5*sin(1.1*t)"
    drift dawn-wave-near 76 "600+7*sin(0.9*t)"
    gull "-100+150*t" "240-14*t+20*sin(t)" 0.72
    gull "-320+150*t" "300-14*t+16*sin(1.2*t)" 0.6 64
    local alpha="clip((t-0.4)/0.7,0,1)*clip((4.4-t)/0.8,0,1)"
    graph+="[$top]drawtext=text='A Walk by the Sea':font='DejaVu Serif':fontsize=68:fontcolor=0xfff6e0:"
    graph+="shadowcolor=0x40304f@0.6:shadowx=2:shadowy=3:x=(w-text_w)/2:y=130:alpha='$alpha'[titled];"
    top=titled
}

scene_beach() {
    background day-sky
    drift clouds-day 16 20
    drift headland 24 225
    layer boat "900-12*t" "292+4*sin(1.6*t)" "scale=150:-1"
    drift day-wave-far 52 390
    drift day-wave-mid 84 "432+5*sin(1.2*t)"
    drift sand 130 478
    gull "1300-170*t" "150+30*sin(1.1*t)" 0.66
    dog "720+90*sin(0.8*t)" 410 2.1
    walker 380 300 1.1
}

# The boat with the fisherman in it is put together first, so that all of it rocks.
boat_with_fisherman() {
    clip boat hull
    clip grandfather man
    clip grandfather-arm arm "" "rotate=a='0.75+0.35*sin(5*t)':c=none"
    graph+="[hull][man]overlay=x=258:y=112:format=yuv444[manned];"
    graph+="[manned][arm]overlay=x=275:y=137:format=yuv444,rotate=a='0.05*sin(1.4*t)':c=none[fisherman];"
}

scene_boat() {
    background day-sky
    drift clouds-day 12 30
    layer lighthouse 880 30 "scale=357:-1"
    gull "60*t" "120+24*sin(0.9*t)" 0.8 60
    drift day-wave-far 24 424
    drift day-wave-mid 50 "470+6*sin(1.1*t)"
    boat_with_fisherman
    put fisherman "250+14*t" "182+9*sin(1.4*t)"
    drift day-wave-near 90 "512+9*sin(1.2*t+1)"
}

scene_rain() {
    background rain-sky
    drift houses 190 "-10"
    drift clouds-rain 34 -14
    drift street 190 506
    rain rain-far 1000
    dog "760+50*sin(1.1*t)" 418 3.2
    walker 400 306 1.9
    rain rain-near 1500
}

scene_cafe() {
    background rain-sky
    layer houses -180 20
    rain rain-far 900
    layer cafe 0 0
    layer tom-body 300 344 "scale=196:336,crop=196:217:0:0"
    layer plate 730 498
    layer cup 520 420
    layer steam "560+6*sin(0.9*t)" "200-8*sin(0.7*t)"
    layer steam "590-7*sin(0.8*t)" "214+9*sin(0.6*t)" "hflip"
    layer lamp 480 -20
}

scene_night() {
    background night-sky
    layer stars-still "-4*t" 0
    layer stars-bright "-60-4*t" 0
    layer shooting-star "820-420*(t-3.2)" "60+86*(t-3.2)" "" "" "enable='between(t,3.2,4)'"
    layer moon 860 30
    layer town-night 640 200 "scale=1152:234"
    layer beam -244 -385 "scale=500:500" "rotate=a='PI+0.12+0.22*sin(0.9*t)':c=none,scale=1000:1000:flags=fast_bilinear"
    layer lighthouse-night 60 30 "scale=357:-1"
    drift night-wave-far 16 424
    layer moonlight "860+6*sin(1.1*t)" "434+3*sin(1.9*t)"
    layer boat "1120-34*t" "330+4*sin(1.5*t)" "format=rgba,colorchannelmixer=rr=0.42:gg=0.46:bb=0.66,scale=190:-1"
    drift night-wave-near 40 "510+6*sin(1.2*t)"
}
