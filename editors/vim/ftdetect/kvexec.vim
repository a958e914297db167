" Job-control scripts run by kvexec.
autocmd BufNewFile,BufRead *.kvx setfiletype kvexec
