' wordcount: a script of the demo notepad menu
WScript.Echo "wordcount"
