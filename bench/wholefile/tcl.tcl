set in [open large.txt rb]
set text [string map {\r ""} [read $in]]
close $in
puts [string length $text]
