' savetext: a script of the demo winword menu
WScript.Echo "savetext"
