# SPDX-License-Identifier: GPL-3.0-or-later
# The sound of the demo film: the voices at their cues over waves, rain and music, all made by FFmpeg's sources.
# Sourced by make-demo-film.
# shellcheck shell=bash disable=SC2154  # the plan of the lines and scenes is make-demo-film's

readonly sample_rate_hz=48000

# Prints the start of a scene in seconds.
scene_start_s() {
    local i
    for i in "${!scenes[@]}"; do
        [[ ${scenes[i]} == "$1" ]] && break
        printf '%s\n' "${scene_durations_s[i]}"
    done | awk '{ sum += $1 } END { printf "%.3f", sum }'
}

# An expression for a volume that rises and falls in a second around a stretch of the film.
swell() {
    printf 'clip((t-%s)+0.5,0,1)*clip((%s-t)+0.5,0,1)' "$1" "$2"
}

# Four slow chords, each rising and falling within six seconds.
pad_music() {
    local slot="mod(floor(t/6),4)" tones="" tone
    for tone in "130.81 110 87.31 98" "196 164.81 130.81 146.83" "246.94 196 164.81 196" "329.63 261.63 220 246.94"; do
        # shellcheck disable=SC2086  # four frequencies
        set -- $tone
        tones+="+sin(2*PI*t*(eq($slot,0)*$1+eq($slot,1)*$2+eq($slot,2)*$3+eq($slot,3)*$4))"
    done
    printf "aevalsrc='0.030*pow(sin(PI*mod(t,6)/6),2)*(0%s)'" "$tones"
}

# A music box: a broken chord, a tone each 0.75 s, that dies away.
bell_music() {
    local slot="mod(floor(t/6),4)" place="mod(floor(t/0.75),4)" root fade="exp(-3.2*mod(t,0.75))"
    root="(eq($slot,0)*261.63+eq($slot,1)*220+eq($slot,2)*174.61+eq($slot,3)*196)"
    local step="(eq($place,0)+eq($place,1)*1.5+eq($place,2)*2+eq($place,3)*2.5)"
    local attack="clip(mod(t,0.75)*120,0,1)"
    printf "aevalsrc='0.075*%s*%s*(sin(2*PI*%s*%s*t)+0.25*sin(4*PI*%s*%s*t))'" \
        "$attack" "$fade" "$root" "$step" "$root" "$step"
}

# The waves come and go; in the rain and in the café there is rain instead, behind glass in the café.
ambience() {
    local duration_s=$1 rain_s cafe_s night_s
    rain_s=$(scene_start_s rain)
    cafe_s=$(scene_start_s cafe)
    night_s=$(scene_start_s night)
    printf "anoisesrc=color=brown:amplitude=0.5:seed=7:r=%s,lowpass=f=700,tremolo=f=0.16:d=0.75," "$sample_rate_hz"
    printf "volume='0.34*(1-0.8*%s)':eval=frame[waves];" "$(swell "$rain_s" "$night_s")"
    printf "anoisesrc=color=pink:amplitude=0.4:seed=11:r=%s,highpass=f=700," "$sample_rate_hz"
    printf "volume='0.20*%s':eval=frame[outside];" "$(swell "$rain_s" "$cafe_s")"
    printf "anoisesrc=color=pink:amplitude=0.4:seed=13:r=%s,lowpass=f=900," "$sample_rate_hz"
    printf "volume='0.10*%s':eval=frame[inside];" "$(swell "$cafe_s" "$night_s")"
    printf "[waves][outside][inside]amix=inputs=3:normalize=0,atrim=duration=%s[ambience];" "$duration_s"
}

# mix_sound LANGUAGE DURATION_S: makes LANGUAGE.mka of the spoken lines, each placed at its cue.
mix_sound() {
    local language=$1 duration_s=$2 i sound labels=""
    local -a inputs=()
    sound=$(ambience "$duration_s")
    for i in "${!line_starts_s[@]}"; do
        inputs+=(-i "$work/$language-$i.wav")
        sound+="[$i:a]aresample=$sample_rate_hz,adelay=delays=$(awk -v s="${line_starts_s[i]}" \
            'BEGIN { printf "%d", s * 1000 + 0.5 }'):all=1[v$i];"
        labels+="[v$i]"
    done
    local music=pad_music
    [[ $language == en ]] || music=bell_music
    sound+="${labels}amix=inputs=${#line_starts_s[@]}:normalize=0:duration=longest,apad,atrim=duration=$duration_s,"
    sound+="highpass=f=90,lowpass=f=9000,acompressor=threshold=-20dB:ratio=2.5:attack=8:release=120,volume=8dB[voice];"
    sound+="$($music),aresample=$sample_rate_hz,aecho=0.8:0.5:90|170:0.3|0.2,atrim=duration=${duration_s}[music];"
    sound+="[voice][ambience][music]amix=inputs=3:normalize=0,afade=t=in:d=1,"
    sound+="afade=t=out:st=$(awk -v d="$duration_s" 'BEGIN { print d - 1.5 }'):d=1.5,alimiter=limit=0.9:level=0,"
    sound+="aformat=channel_layouts=stereo[mix]"
    quiet_ffmpeg "${inputs[@]}" -filter_complex "$sound" -map '[mix]' -c:a aac -b:a 128k "$work/$language.mka"
}
