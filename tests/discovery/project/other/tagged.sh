#!/bin/sh
cat <<'END'
{"program":"tagged","version":"1.0.0","count":4,"digest":"0","tests":[
{"id":"a.relative","names":["a","relative"],"duration":"short","interactive":false,"tags":["data base","a,b","[x]"],"file":"suite.cpp","line":7},
{"id":"a.elsewhere","names":["a","elsewhere"],"duration":"7","interactive":false,"tags":[],"file":"/no/such/file.cpp","line":8},
{"id":"b.unlocated","names":["b","unlocated"],"duration":"long","interactive":false,"tags":["one"]},
{"id":"c","names":["c"],"duration":"none","interactive":false,"tags":[],"file":"other/tagged.sh","line":1}
]}
END
