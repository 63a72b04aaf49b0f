# Sourced by the whole-program benchmarks: data files of groups of 50 markers.
# marker_groups N prints a data file of N such groups: "Bench50", then
# "Bench50_0002" to "Bench50_N". All of them put their lines at the same
# places (a grid over the screen; thickness 1 and 3, every fifth one dotted),
# so a point clear of the lines of one is clear of all; the colours differ.
marker_groups() {
  awk -v groups="$1" 'BEGIN {
    printf "[Defaults]\r\nDefaults=0,0,-2,-2,255,1,100,0,\r\nDataFormat=1\r\nScreenRes=1920x1080\r\nPC=bench\r\n"
    split("255 65280 16711680 65535 16711935", colours, " ")
    for (g = 1; g <= groups; g++) {
      printf "[%s]\r\nDataFormat=1\r\nDefaults=0,0,-1,-1,-1,-1,-1,-1,\r\n", g == 1 ? "Bench50" : sprintf("Bench50_%04d", g)
      for (n = 1; n <= 50; n++)
        printf "%d=%d,%d,%d,%d,%d,%d,%d,%d,\r\n", n, 100 + (n % 10) * 170, 80 + int(n / 10) * 180, 60 + n * 4,
          50 + n * 3, colours[(n + g - 1) % 5 + 1], n % 2 == 0 ? 3 : 1, 40 + n, n % 5 == 0 ? 1 : 0
      printf "Notes=Benchmark group\r\n"
    }
  }'
}
